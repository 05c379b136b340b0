// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_sources.h"

#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int largest_number = 1000000;
constexpr qsizetype shown_digits = 60;
constexpr QLatin1StringView list_members[] = {"path"_L1, "type"_L1, "name"_L1, "number"_L1, "volume"_L1, "member"_L1};

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(error_kind::refused, message);
}

QString text_of(const QJsonObject &entry, QLatin1StringView member, const QString &place)
{
    const QJsonValue value = entry.value(member);
    if (!value.isUndefined() && !value.isString())
        refuse(place + u'.' + member + u" is no text"_s);
    return value.toString();
}

named_source read_entry(const QJsonValue &value, const QString &place, const QString &folder)
{
    if (!value.isObject())
        refuse(place + u" is no object"_s);
    const QJsonObject entry = value.toObject();
    for (auto member = entry.begin(); member != entry.end(); ++member) {
        if (std::find(std::begin(list_members), std::end(list_members), member.key()) == std::end(list_members))
            refuse(place + u" has an unknown member, "_s + member.key());
    }

    named_source source;
    source.place = place;
    source.name = text_of(entry, "name"_L1, place);
    const QString path = text_of(entry, "path"_L1, place);
    if (path.isEmpty())
        refuse(place + u".path is missing or empty"_s);
    // Joined by hand: to QDir a name that begins with ":" is one of the program's own resources.
    source.path = QDir::cleanPath(path.startsWith(u'/') ? path : QString(folder + u'/' + path));
    const QString type = text_of(entry, "type"_L1, place);
    source.kind = source_kind_named(type);
    if (!type.isEmpty() && type != "auto"_L1 && !source.kind)
        refuse(place + u".type is "_s + type
               + u", and only macOS, iOS_UID, iOS_files, iOS_backup, winOS and auto are known"_s);
    const QJsonValue number = entry.value("number"_L1);
    if (!number.isUndefined()) {
        const qint64 given = number.toInteger(-1);
        if (given < 1 || given > largest_number || number.toDouble() != double(given))
            refuse(place + u".number is no whole number from 1 to 1000000"_s);
        source.number = int(given);
    }
    source.member = text_of(entry, "member"_L1, place);
    const QJsonValue volume = entry.value("volume"_L1);
    if (!volume.isUndefined()) {
        const qint64 given = volume.toInteger(-1);
        if (given < 1 || given > largest_number || volume.toDouble() != double(given))
            refuse(place + u".volume is no whole number from 1 to 1000000"_s);
        source.volume = int(given);
    }
    return source;
}

/** A list that is there and no JSON is wrong use, as any other fault in it is. */
QJsonObject read_list_file(const QString &file)
{
    try {
        return read_json_file(file);
    } catch (const host_error &error) {
        throw host_error(QFileInfo(file).isReadable() ? error_kind::refused : error.kind(), error.message());
    }
}

/** The sources of a list that was read from @p file. */
QList<named_source> sources_in(const QJsonObject &list, const QString &file)
{
    const QString name = QFileInfo(file).fileName();
    for (auto member = list.begin(); member != list.end(); ++member) {
        if (member.key() != "sources"_L1)
            refuse(name + u" has an unknown member, "_s + member.key());
    }
    const QJsonValue entries = list.value("sources"_L1);
    if (!entries.isArray() || entries.toArray().isEmpty())
        refuse(name + u": sources is no list of at least one source"_s);

    QList<named_source> sources;
    const QString folder = QFileInfo(file).absolutePath();
    for (const auto entry : entries.toArray())
        sources.append(read_entry(entry, name + u": sources["_s + QString::number(sources.size()) + u']', folder));
    return sources;
}

/** What a path is, however it is reached. Empty for one that is not there. */
QString identity_of(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return QString::number(quint64(status.st_dev)) + u':' + QString::number(quint64(status.st_ino));
}

/** Of a list of sources, for its hash; what picks one of several sources in a path counts where it is given. */
QJsonArray identity_entry(const named_source &source)
{
    QJsonArray entry{source.number, source.name, source.path};
    if (source.volume > 0 || !source.member.isEmpty())
        entry.append(QJsonObject{{u"volume"_s, source.volume}, {u"member"_s, source.member}});
    return entry;
}

/** What sets sources of one container apart. */
QString choice_text(const named_source &source)
{
    if (source.volume == 0 && source.member.isEmpty())
        return {};
    return u"\n"_s + QString::number(source.volume) + u"\n"_s + source.member;
}

QString described(const named_source &source)
{
    return source.path + u" ("_s + source.place + u')';
}

} // namespace

QList<named_source> read_source_list(const QString &file)
{
    return sources_in(read_list_file(resolved_path(file, u"--sources"_s)), file);
}

QList<named_source> read_list_of_case(const QString &file)
{
    return sources_in(read_list_file(file), file);
}

QJsonObject source_list_json(const QList<named_source> &sources)
{
    QJsonArray entries;
    for (const named_source &source : sources) {
        QJsonObject entry{{u"path"_s, source.path}, {u"number"_s, source.number}};
        if (!source.name.isEmpty())
            entry.insert("name"_L1, source.name);
        if (source.kind)
            entry.insert("type"_L1, QString(source.kind->name));
        if (source.volume > 0)
            entry.insert("volume"_L1, source.volume);
        if (!source.member.isEmpty())
            entry.insert("member"_L1, source.member);
        entries.append(entry);
    }
    return {{u"sources"_s, entries}};
}

void write_source_list(const QString &file, const QList<named_source> &sources)
{
    write_json_file(file, source_list_json(sources));
}

void number_sources(QList<named_source> &sources)
{
    QHash<int, QString> places;
    for (const named_source &source : std::as_const(sources)) {
        if (source.number == -1)
            continue;
        if (places.contains(source.number))
            refuse(u"the number "_s + QString::number(source.number) + u" is given twice: "_s
                   + places.value(source.number) + u" and "_s + described(source));
        places.insert(source.number, described(source));
    }
    int next = 1;
    for (named_source &source : sources) {
        if (source.number == -1) {
            while (places.contains(next))
                ++next;
            source.number = next++;
        }
    }
}

void refuse_overlaps(const QList<named_source> &sources, path_comparison comparison)
{
    const bool looks = comparison == path_comparison::places;
    const auto key_of = [looks](const QString &path) {
        const QString identity = looks ? identity_of(path) : QString();
        return identity.isEmpty() ? path : identity;
    };
    QHash<QString, const named_source *> known;
    for (const named_source &source : sources) {
        const QString key = key_of(source.path) + choice_text(source);
        if (const named_source *other = known.value(key))
            refuse(u"a source is given twice: "_s + described(*other) + u" and "_s + described(source));
        known.insert(key, &source);
    }
    for (const named_source &source : sources) {
        QString folder = looks ? QFileInfo(source.path).canonicalFilePath() : source.path;
        while (folder.size() > 1) {
            folder = folder.left(qMax<qsizetype>(1, folder.lastIndexOf(u'/')));
            if (const named_source *outer = known.value(key_of(folder)))
                refuse(u"a source lies inside another: "_s + described(source) + u" inside "_s + described(*outer));
        }
    }
}

QJsonObject sources_identity(const QList<named_source> &sources)
{
    QList<const named_source *> sorted;
    for (const named_source &source : sources)
        sorted.append(&source);
    std::sort(sorted.begin(), sorted.end(),
              [](const auto *one, const auto *other) { return one->number < other->number; });

    QJsonArray list;
    QList<int> numbers;
    for (const named_source *source : std::as_const(sorted)) {
        list.append(identity_entry(*source));
        numbers.append(source->number);
    }
    return {{u"count"_s, sources.size()},
            {u"numbers"_s, ranges_of(numbers)},
            {u"sha256"_s, sha256::of(QJsonDocument(list).toJson(QJsonDocument::Compact))}};
}

QString ranges_of(const QList<int> &numbers)
{
    QStringList ranges;
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        const int first = numbers.at(i);
        int last = first;
        while (i + 1 < numbers.size() && numbers.at(i + 1) == last + 1)
            last = numbers.at(++i);
        ranges.append(QString::number(first) + (last == first ? QString() : QString(u'-' + QString::number(last))));
    }
    return ranges.join(u',');
}

QList<int> numbers_in(const QString &ranges)
{
    static const QRegularExpression form(u"^([0-9]{1,7})(?:-([0-9]{1,7}))?$"_s);
    QList<int> numbers;
    const QStringList parts = ranges.isEmpty() ? QStringList() : ranges.split(u',');
    for (const QString &part : parts) {
        const QRegularExpressionMatch match = form.match(part);
        const int first = match.captured(1).toInt();
        const int last = match.hasCaptured(2) ? match.captured(2).toInt() : first;
        if (!match.hasMatch() || last < first || last > largest_number
            || (!numbers.isEmpty() && first <= numbers.last()))
            throw host_error(error_kind::not_found, u"these are no numbers of sources: "_s + ranges.left(shown_digits));
        for (int number = first; number <= last; ++number)
            numbers.append(number);
    }
    return numbers;
}
