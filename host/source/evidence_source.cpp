// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_source.h"

#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/source/evidence_folder.h"
#include "host/source/log_text.h"
#include "host/source/macos_databases.h"
#include "host/source/source_hint.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void fail(const QString &message)
{
    throw host_error(error_kind::not_found, message);
}

QString behind_a_colon(const QString &hint)
{
    return hint.isEmpty() ? hint : QString(u": "_s + hint);
}

bool looks_like_windows(const QString &path)
{
    const QString windows = find_entry(path, u"Windows"_s);
    const QString folder = path + u'/' + windows;
    const QString system = windows.isEmpty() ? QString() : find_entry(folder, u"System32"_s);
    return !system.isEmpty() && QFileInfo(folder + u'/' + system).isDir();
}

const source_kind &recognized_kind(const QFileInfo &place)
{
    if (place.isFile())
        return ios_uid_kind;
    if (place.isDir() && holds_macos_databases(place.filePath()))
        return macos_kind;
    if (place.isDir() && (!place.isReadable() || !place.isExecutable()))
        fail(u"the source cannot be read: "_s + place.filePath() + u": permission denied"_s);
    if (place.isDir() && looks_like_windows(place.filePath()))
        return winos_kind;
    for (const QLatin1StringView folder : {"/Library/Bluetooth"_L1, "/Windows/System32"_L1}) {
        if (const std::optional<QString> closed = closed_folder(place.filePath() + folder, place.filePath()))
            fail(u"the source cannot be read: "_s + *closed + u": permission denied"_s);
    }
    if (const QString hint = source_hint(place.filePath()); !hint.isEmpty())
        fail(u"this is a part of a source: "_s + place.filePath() + u": "_s + hint);
    fail(u"this is no source that can be recognized: "_s + place.filePath()
         + u" (a macOS source holds one of the LE device databases in Library/Bluetooth, a Windows source the folder "
           "Windows/System32, an iOS source is a log text file; --type says which it is)"_s);
}

/** Why the plug-in could not read the file. Links to a file count as that file. */
std::optional<QString> unreadable_reason(const QFileInfo &file)
{
    if (!file.exists())
        return u"it is a link that leads nowhere"_s;
    if (!file.isFile())
        return u"it is not a regular file"_s;
    if (!file.isReadable())
        return u"permission denied"_s;
    return {};
}

/** The databases of the tables that are asked for: one of them at least must be there and readable. */
void require_macos_evidence(const evidence_source &source, const QStringList &tables)
{
    const QString folder = source.root + macos_database_folder;
    if (const std::optional<QString> closed = closed_folder(source.root + u"Library/Bluetooth"_s, source.path))
        fail(u"the evidence cannot be read: "_s + *closed + u": permission denied"_s);
    QStringList problems;
    QStringList missing;
    for (const macos_database *database : macos_databases) {
        if (!tables.contains(database->result_table))
            continue;
        const QFileInfo file(folder + database->file_name);
        if (!file.exists() && !file.isSymLink()) {
            missing.append(database->result_table);
            continue;
        }
        std::optional<QString> problem = unreadable_reason(file);
        if (!problem)
            problem = refused_link(source, file.filePath());
        if (!problem)
            return;
        problems.append(file.filePath() + u": "_s + *problem);
    }
    if (!problems.isEmpty())
        fail(u"the evidence cannot be read: "_s + problems.join(u"; "_s));
    fail(u"the source holds no LE device database for "_s + missing.join(u" or "_s) + u" in "_s + folder
         + behind_a_colon(missing == tables ? source_hint(source.path) : QString()));
}

void require_folder(const evidence_source &source)
{
    const QFileInfo folder(source.path);
    if (!folder.isDir())
        fail(u"a "_s + source.kind->name + u" source is a folder, and this is none: "_s + source.path
             + behind_a_colon(source.kind == &macos_kind ? source_hint(source.path) : QString()));
    if (!folder.isReadable() || !folder.isExecutable())
        fail(u"the source cannot be read: "_s + source.path + u": permission denied"_s);
}

} // namespace

std::optional<QString> link_out_of_source(const evidence_source &source, const QString &path)
{
    if (source.kind == &ios_uid_kind || is_inside(path, source.root))
        return {};
    const QString target = QFileInfo(path).canonicalFilePath();
    if (target.isEmpty()) // it leads nowhere, or cannot be followed: whoever opens it learns why
        return {};
    return target;
}

std::optional<QString> refused_link(const evidence_source &source, const QString &path)
{
    const std::optional<QString> target = link_out_of_source(source, path);
    if (!target || source.follow_links)
        return {};
    return u"it is reached by a link that leads out of the source, to "_s + *target
           + u": --follow-links reads it nevertheless"_s;
}

evidence_source find_source(const QString &path, const source_kind *kind, const QStringList &tables, bool follow_links)
{
    const QFileInfo place(path);
    if (!place.exists()) {
        if (const std::optional<QString> closed = closed_folder(path))
            fail(u"the source cannot be read: "_s + *closed + u": permission denied"_s);
        fail(u"there is no source at "_s + path);
    }

    evidence_source source;
    source.path = path;
    source.follow_links = follow_links;
    source.kind = kind ? kind : &recognized_kind(place);
    if (source.kind == &ios_uid_kind) {
        if (const std::optional<QString> problem = unreadable_reason(place))
            fail(u"the log text cannot be read: "_s + path + u": "_s + *problem);
        if (const std::optional<QString> reason = why_no_device_log(path))
            fail(u"this is no log text of a device: "_s + path + u": "_s + *reason + behind_a_colon(source_hint(path)));
        source.log_file = path;
        source.root = place.path();
    } else {
        require_folder(source);
        source.root = path;
    }
    if (!source.root.endsWith(u'/'))
        source.root += u'/';
    if (source.kind == &macos_kind)
        require_macos_evidence(source, tables);
    return source;
}

QStringList evidence_folders(const evidence_source &source)
{
    if (source.kind == &macos_kind)
        return {source.root + u"Library/Bluetooth"_s, source.root + u"Library/Preferences"_s};
    return {source.path};
}
