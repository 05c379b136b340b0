// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_search.h"

#include "host/container/member_name.h"
#include "host/source/macos_databases.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView any_name("*");
constexpr QLatin1StringView databases("<databases>");

/** Where one kind of source keeps files, below its root, and where the plug-in looks for them. */
struct evidence_folder_rule
{
    const source_kind *kind;
    QLatin1StringView folder; ///< "*" stands for any one name; its value belongs to the root
    QLatin1StringView name;   ///< of the file, databases for the databases and what stands beside them, empty for none
    QLatin1StringView target; ///< the folder that the plug-in knows
};

// clang-format off
constexpr evidence_folder_rule rules[] = {
    {&macos_kind, "Library/Bluetooth"_L1, databases, "Library/Bluetooth/"_L1},
    {&macos_kind, "Library/Bluetooth/Library/Preferences"_L1, "com.apple.MobileBluetooth.devices.plist"_L1, "Library/Bluetooth/Library/Preferences/"_L1},
    {&macos_kind, "Library/Preferences"_L1, "com.apple.Bluetooth.plist"_L1, "Library/Preferences/"_L1},
    {&ios_files_kind, "containers/Shared/SystemGroup/*/Library/Database"_L1, databases, "Library/Bluetooth/"_L1},
    {&ios_files_kind, "containers/Shared/SystemGroup/*/Library/Preferences"_L1, "com.apple.MobileBluetooth.devices.plist"_L1, "Library/Bluetooth/Library/Preferences/"_L1},
    {&ios_files_kind, "mobile/Library/MobileBluetooth"_L1, databases, "Library/Bluetooth/"_L1},
    {&ios_files_kind, "mobile/Library/Preferences"_L1, "com.apple.MobileBluetooth.devices.plist"_L1, "Library/Bluetooth/Library/Preferences/"_L1},
    {&winos_kind, "Windows/System32/config"_L1, "SYSTEM"_L1, {}},
    {&winos_kind, "Windows/System32/config"_L1, "SYSTEM.LOG1"_L1, {}},
    {&winos_kind, "Windows/System32/config"_L1, "SYSTEM.LOG2"_L1, {}},
    {&winos_kind, "Windows/System32"_L1, {}, {}},
    {&ios_backup_kind, {}, "Manifest.db"_L1, {}},
};

/** Where the root of a kind of source can be in a volume; the empty one is the volume's own root. */
constexpr struct { const source_kind *kind; QLatin1StringView root; } roots[] = {
    {&macos_kind, ""_L1},
    {&macos_kind, "System/Volumes/Data"_L1},
    {&macos_kind, "*"_L1},
    {&ios_files_kind, "private/var"_L1},
    {&ios_files_kind, ""_L1},
    {&ios_files_kind, "*"_L1},
    {&ios_files_kind, "*/private/var"_L1},
    {&winos_kind, ""_L1},
    {&winos_kind, "*"_L1},
};
// clang-format on

Qt::CaseSensitivity case_of(const evidence_folder_rule &rule)
{
    return rule.kind == &winos_kind ? Qt::CaseInsensitive : Qt::CaseSensitive;
}

/** "….db", "….db-wal", "….db.12:00:00_01-31-2026.corrupt" */
bool is_of_a_database(const QString &name)
{
    return std::any_of(std::begin(macos_databases), std::end(macos_databases), [&name](const auto *database) {
        static const QRegularExpression ending(u"^(|-wal|-shm|-journal|\\..*\\.corrupt)$"_s);
        return name.startsWith(database->file_name) && ending.match(name.sliced(database->file_name.size())).hasMatch();
    });
}

bool is_database(const QString &name)
{
    return std::any_of(std::begin(macos_databases), std::end(macos_databases),
                       [&name](const auto *database) { return name == database->file_name; });
}

bool fits_name(const evidence_folder_rule &rule, const QString &name)
{
    return rule.name == databases ? is_of_a_database(name)
                                  : name.size() == rule.name.size() && name.compare(rule.name, case_of(rule)) == 0;
}

bool fits_folder(const QStringList &pattern, const QStringList &parts, qsizetype start, Qt::CaseSensitivity sensitivity)
{
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (pattern.at(i) != any_name && pattern.at(i).compare(parts.at(start + i), sensitivity) != 0)
            return false;
    }
    return true;
}

/** A rule, and the parts of its folder: archives have millions of names. */
struct parted_rule
{
    const evidence_folder_rule *rule;
    QStringList folder;
    qsizetype parts_of_root; ///< so many of the folder belong to the root: up to its "*", or the "mobile" of old
};

const QList<parted_rule> &parted_rules()
{
    static const QList<parted_rule> all = [] {
        QList<parted_rule> parted;
        for (const evidence_folder_rule &rule : rules) {
            const QStringList folder = QString(rule.folder).split(u'/', Qt::SkipEmptyParts);
            const qsizetype of_root = rule.kind == &ios_files_kind ? qMax<qsizetype>(1, folder.indexOf(any_name) + 1)
                                                                   : 0;
            parted.append({&rule, folder, of_root});
        }
        return parted;
    }();
    return all;
}

std::optional<evidence_match> fit(const parted_rule &parted, const QStringList &parts)
{
    const evidence_folder_rule &rule = *parted.rule;
    const qsizetype names = rule.name.isEmpty() ? 0 : 1;
    const qsizetype start = parts.size() - parted.folder.size() - names;
    if (start < 0 || (names == 1 && !fits_name(rule, parts.last()))
        || !fits_folder(parted.folder, parts, start, case_of(rule)))
        return {};
    evidence_match match;
    match.kind = rule.kind;
    match.root = parts.first(start + parted.parts_of_root).join(u'/');
    match.is_a_sign = rule.kind == &winos_kind || rule.kind == &ios_backup_kind || is_database(parts.last());
    if (names == 1)
        match.target = rule.target.isEmpty() ? parts.sliced(start).join(u'/') : rule.target + parts.last();
    return match;
}

} // namespace

evidence_search::evidence_search(const source_kind *kind)
    : wanted(kind)
{
}

bool evidence_search::looks_for(const source_kind &kind) const
{
    return !wanted || wanted == &kind;
}

std::optional<evidence_match> evidence_search::match(const QStringList &parts) const
{
    for (const parted_rule &parted : parted_rules()) {
        if (!looks_for(*parted.rule->kind))
            continue;
        if (std::optional<evidence_match> found = fit(parted, parts))
            return found;
    }
    return {};
}

bool evidence_search::may_match(QByteArrayView path)
{
    static const QList<QByteArray> beginnings = [] {
        QList<QByteArray> names;
        for (const macos_database *database : macos_databases)
            names.append(QByteArray(database->file_name.data(), database->file_name.size()));
        for (const parted_rule &parted : parted_rules()) {
            if (parted.rule->name != databases)
                names.append(parted.rule->name.isEmpty() ? parted.folder.last().toLatin1()
                                                         : QString(parted.rule->name).toLatin1());
        }
        return names;
    }();
    if (path.endsWith('/'))
        path.chop(1);
    const QByteArrayView name = path.sliced(path.lastIndexOf('/') + 1);
    return std::any_of(beginnings.cbegin(), beginnings.cend(), [name](const QByteArray &beginning) {
        return name.size() >= beginning.size()
               && qstrnicmp(name.data(), beginning.size(), beginning.constData(), beginning.size()) == 0;
    });
}

bool evidence_search::nearly_matches(const QStringList &parts) const
{
    static const QHash<QString, QStringList> spellings = [] {
        QHash<QString, QStringList> names;
        for (const macos_database *database : macos_databases)
            names.insert(folded_name(database->file_name),
                         QString(macos_database_folder).split(u'/', Qt::SkipEmptyParts));
        return names;
    }();
    constexpr qsizetype shortest = 15; // a character that is folded becomes three at most
    if (parts.isEmpty() || parts.last().size() < shortest)
        return false;
    const auto known = spellings.constFind(folded_name(parts.last()));
    if (known == spellings.cend() || match(parts))
        return false;
    const QStringList &folder = *known;
    return parts.size() > folder.size() && looks_for(macos_kind)
           && folded_name(parts.sliced(parts.size() - 1 - folder.size(), folder.size()).join(u'/'))
                  == folded_name(folder.join(u'/'));
}

QList<QStringList> evidence_search::folders() const
{
    QList<QStringList> found;
    for (const evidence_folder_rule &rule : rules) {
        for (const auto &root : roots) {
            if (root.kind != rule.kind || !looks_for(*rule.kind))
                continue;
            QString path = QString(root.root) + u'/' + rule.folder;
            const QStringList folder = path.split(u'/', Qt::SkipEmptyParts);
            if (!found.contains(folder))
                found.append(folder);
        }
    }
    return found;
}
