// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_collector.h"

#include "host/container/member_name.h"
#include "host/container/staged_file.h"
#include "host/files/free_room.h"
#include "host/files/host_error.h"
#include "host/source/log_text.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block_bytes = 1 << 20;     // the first one decides whether a text may be a log, as of a plain file
constexpr qsizetype bytes_of_a_look = 1 << 12; ///< of a file that nobody asked for show that it is no text
constexpr qsizetype bytes_before_a_file = 1 << 20; ///< of a text that may be a log are kept in memory
constexpr qsizetype most_roots = 64;
constexpr qsizetype most_files_of_a_root = 1000;
constexpr qsizetype most_listed = 20;

QString bytes_text(qint64 bytes)
{
    return QString::number(bytes) + u" bytes"_s;
}

/** As much as there is of a block. */
qsizetype fill(byte_stream &stream, QByteArray &buffer)
{
    qsizetype filled = 0;
    while (filled < buffer.size()) {
        const qsizetype count = stream.read(buffer.data() + filled, buffer.size() - filled);
        if (count == 0)
            break;
        filled += count;
    }
    return filled;
}

/** A stream of which the start was read already. */
class begun_stream : public byte_stream
{
public:
    begun_stream(const QByteArray &read, byte_stream &more)
        : start(read)
        , rest(more)
    {
    }

    qsizetype read(char *bytes, qsizetype most) override
    {
        const qsizetype count = qMin(most, start.size() - given);
        if (count == 0)
            return rest.read(bytes, most);
        std::copy_n(start.constData() + given, count, bytes);
        given += count;
        return count;
    }

private:
    QByteArray start;
    byte_stream &rest;
    qsizetype given = 0;
};

/**
 * Why a file that begins with these bytes needs no further look: it is no text, and its start has no line of a log. An
 * archive holds millions of those.
 */
std::optional<QString> why_passed_over(QByteArrayView start)
{
    device_log_check check;
    if (!start.contains('\0') || check.add(start))
        return {};
    check.finish();
    return check.reason();
}

QString too_large(qint64 most, QLatin1StringView limit_option)
{
    return u"it has more than the "_s + bytes_text(most) + u" that "_s + limit_option + u" allows"_s;
}

/** Every block of a stream, and how many bytes they were. Ends early when @p take gives false. */
template<typename function>
qint64 read_all(byte_stream &stream, qint64 most, QLatin1StringView limit_option, const function &take)
{
    QByteArray buffer(block_bytes, Qt::Uninitialized);
    qint64 bytes = 0;
    while (const qsizetype count = fill(stream, buffer)) {
        bytes += count;
        if (bytes > most)
            throw stream_failure(too_large(most, limit_option), true);
        if (!take(QByteArrayView(buffer.constData(), count)))
            break;
    }
    return bytes;
}

void object(collected_file &file, const QString &reason, bool refused)
{
    if (!file.staged.isEmpty())
        QFile::remove(file.staged);
    file.staged.clear();
    file.sha256.clear();
    file.objection = reason;
    file.is_refused = refused;
}

/** A container that says one size and gives another is not believed in either. */
void check_size(const collected_file &file, qint64 bytes)
{
    if (file.origin.size && *file.origin.size != bytes)
        throw stream_failure(u"its container says that it has "_s + bytes_text(*file.origin.size) + u", and holds "_s
                             + QString::number(bytes));
}

QString listed(const QStringList &names)
{
    QString text;
    for (const QString &name : names.first(qMin(names.size(), most_listed)))
        text += (text.isEmpty() ? u" "_s : u", "_s) + u"--member "_s + name;
    if (names.size() > most_listed)
        text += u" and "_s + QString::number(names.size() - most_listed) + u" more"_s;
    return text;
}

/** The kinds in the order in which they are looked for. */
qsizetype rank(const collected_source &source)
{
    const auto found = std::find(std::begin(source_kinds), std::end(source_kinds), source.kind);
    return found - std::begin(source_kinds);
}

} // namespace

void refuse_to_choose(const QString &what, const QStringList &names)
{
    throw host_error(error_kind::refused, what + u", choose one:"_s + listed(names));
}

void refuse_missing_member(const QString &name, const QString &reason)
{
    throw host_error(error_kind::refused, u"there is no device log and no evidence with the name of --member: "_s + name
                                              + (reason.isEmpty() ? QString() : u" ("_s + reason + u')'));
}

evidence_collector::evidence_collector(const evidence_search &wanted, const QString &staging, const QString &member,
                                       const collection_limits &most)
    : search(wanted)
    , folder(staging)
    , asked_for(member)
    , limits(most)
{
    log.kind = &ios_uid_kind;
}

void evidence_collector::take(const stored_file &file, byte_stream *stream)
{
    if (const std::optional<evidence_match> match = search.match(file.parts))
        take_evidence(file, *match, stream);
    else if (stream && takes_others() && is_asked_for(file))
        take_log(file, stream);
}

bool evidence_collector::takes_others() const
{
    return search.looks_for(ios_uid_kind)
           && (!asked_for.isEmpty()
               || std::none_of(sources.cbegin(), sources.cend(),
                               [](const collected_source &source) { return source.has_a_sign; }));
}

bool evidence_collector::is_asked_for(const stored_file &file) const
{
    return asked_for.isEmpty() || asked_for == file.origin.path || asked_for == joined(file.parts);
}

QString evidence_collector::next_place()
{
    return folder.isEmpty() ? QString() : folder + u'/' + QString::number(places++);
}

/** Before the first byte is written: a disk that fills up in the middle is the worse way to learn it. */
void evidence_collector::require_room_for(const collected_file &file)
{
    constexpr qint64 further_copies = 2; // of a database: the host's and the plug-in's
    if (folder.isEmpty() || !file.origin.size)
        return;
    if (file.target.endsWith(".db"_L1))
        later_copies += further_copies * *file.origin.size;
    require_room(folder, *file.origin.size + later_copies);
}

void evidence_collector::require_size_and_room(const collected_file &file)
{
    if (file.origin.size && *file.origin.size > limits.most_log_bytes)
        throw stream_failure(too_large(limits.most_log_bytes, "--max-log"_L1), true);
    require_room_for(file);
}

void evidence_collector::take_evidence(const stored_file &stored, const evidence_match &match, byte_stream *stream)
{
    const QString key = match.kind->name + u'\n' + match.root;
    if (!sources.contains(key) && sources.size() >= most_roots)
        throw host_error(error_kind::not_found,
                         u"the container holds evidence in more than "_s + QString::number(most_roots) + u" folders"_s);
    collected_source &source = sources[key];
    source.kind = match.kind;
    source.root = match.root;
    source.has_a_sign = source.has_a_sign || match.is_a_sign;
    if (match.target.isEmpty() || stored.is_folder)
        return;
    if (source.files.size() >= most_files_of_a_root)
        return;

    collected_file file;
    file.target = match.target;
    file.origin = stored.origin;
    file.size = stored.origin.size.value_or(0);
    file.objection = stored.objection;
    file.is_refused = stored.is_refused;
    file.is_encrypted = stored.is_encrypted;
    collected_file &kept = source.files[folded_name(match.target)];
    if (!kept.target.isEmpty()) { // the later one counts
        file.earlier = kept.earlier + 1;
        object(kept, {}, false);
    }
    kept = file;
    if (stream)
        read_file(kept, *stream);
}

void evidence_collector::read_file(collected_file &file, byte_stream &stream)
{
    if (file.origin.size && *file.origin.size > limits.most_database_bytes)
        return object(file,
                      u"it has "_s + bytes_text(*file.origin.size) + u", more than the "_s
                          + QString::number(limits.most_database_bytes >> 20) + u" MiB that --max-database allows"_s,
                      true);
    if (folder.isEmpty() && file.origin.size)
        return;
    try {
        std::optional<staged_file> staged;
        const QString place = next_place();
        require_room_for(file);
        if (!place.isEmpty())
            staged.emplace(place);
        file.size = read_all(stream, limits.most_database_bytes, "--max-database"_L1, [&staged](QByteArrayView block) {
            if (staged)
                staged->add(block);
            return true;
        });
        check_size(file, file.size);
        if (staged) {
            file.sha256 = staged->keep();
            file.staged = place;
        }
    } catch (const stream_failure &failure) {
        object(file, failure.reason(), failure.refuses());
    }
}

void evidence_collector::take_log(const stored_file &stored, byte_stream *stream)
{
    collected_file file;
    file.target = stored.parts.last();
    file.origin = stored.origin;
    file.size = stored.origin.size.value_or(0);
    ++other_files;
    read_log(file, *stream, stored.is_alone || !asked_for.isEmpty());
    if (file.target.isEmpty())
        return;
    if (asked_for.isEmpty() && !log_names.isEmpty()) { // a choice: none of them is taken
        for (collected_file &kept : log.files)
            object(kept, {}, false);
        object(file, {}, false);
    }
    log_names.append(joined(stored.parts));
    if (collected_file &kept = log.files[QString()]; !kept.target.isEmpty()) {
        file.earlier = kept.earlier + 1;
        object(kept, {}, false);
    }
    log.files[QString()] = file;
    log.has_a_sign = true;
}

void evidence_collector::read_log(collected_file &file, byte_stream &stream, bool is_meant)
{
    const bool is_listed_only = folder.isEmpty() && file.origin.size.has_value();
    device_log_check check;
    bool is_log = false;
    try {
        QByteArray start(bytes_of_a_look, Qt::Uninitialized);
        start.truncate(fill(stream, start));
        const std::optional<QString> objection = is_meant ? std::nullopt : why_passed_over(start);
        if (objection) {
            why_no_log = *objection;
            file.target.clear();
            return;
        }
        begun_stream whole(start, stream);
        std::optional<staged_file> staged;
        const QString place = next_place();
        QByteArray begun; // what was read before it was known to be a log, or to be long
        const qint64 bytes = read_all(whole, limits.most_log_bytes, "--max-log"_L1, [&](QByteArrayView block) {
            const bool was_log = is_log;
            is_log = is_log || check.add(block);
            if (check.is_decided() && !is_log)
                return false;
            if (is_log && !was_log)
                require_size_and_room(file);
            if (!place.isEmpty() && !staged) {
                begun += block;
                if (is_log || begun.size() > bytes_before_a_file) {
                    staged.emplace(place);
                    staged->add(begun);
                    begun.clear();
                }
            } else if (staged) {
                staged->add(block);
            }
            return !(is_log && is_listed_only);
        });
        is_log = is_log || check.finish();
        if (!is_log) {
            why_no_log = check.reason();
            file.target.clear();
            return;
        }
        if (is_listed_only)
            return;
        file.size = bytes;
        check_size(file, bytes);
        if (!place.isEmpty()) {
            if (!staged) {
                staged.emplace(place);
                staged->add(begun);
            }
            file.sha256 = staged->keep();
            file.staged = place;
        }
    } catch (const stream_failure &failure) {
        why_no_log = failure.reason();
        if (is_log || failure.refuses())
            object(file, failure.reason(), failure.refuses());
        else
            file.target.clear();
    }
}

QList<const collected_source *> evidence_collector::candidates() const
{
    QList<const collected_source *> found;
    for (const collected_source &source : sources) {
        if (source.has_a_sign && (asked_for.isEmpty() || asked_for == source.root))
            found.append(&source);
    }
    std::stable_sort(found.begin(), found.end(), [](const auto *left, const auto *right) {
        const auto depth = [](const collected_source *source) {
            return source->root.isEmpty() ? 0 : source->root.count(u'/') + 1;
        };
        return std::pair(rank(*left), depth(left)) < std::pair(rank(*right), depth(right));
    });
    return found;
}

bool evidence_collector::has_found() const
{
    return log.has_a_sign || !candidates().isEmpty();
}

const collected_source &evidence_collector::chosen() const
{
    const QList<const collected_source *> found = candidates();
    if (!found.isEmpty()) {
        QStringList equals;
        for (const collected_source *source : found) {
            if (source->kind == found.first()->kind && source->root.count(u'/') == found.first()->root.count(u'/')
                && source->root.isEmpty() == found.first()->root.isEmpty())
                equals.append(source->root);
        }
        if (equals.size() > 1)
            refuse_to_choose(u"there is evidence in several folders"_s, equals);
        return *found.first();
    }
    if (log_names.size() > 1 && asked_for.isEmpty())
        refuse_to_choose(u"there are several device logs"_s, log_names);
    if (log.has_a_sign)
        return log;
    if (!asked_for.isEmpty())
        refuse_missing_member(asked_for, why_no_log);
    throw host_error(error_kind::not_found,
                     u"there is no evidence in it"_s
                         + (other_files == 1 && !why_no_log.isEmpty() ? u": as a log text, "_s + why_no_log
                                                                      : QString()));
}
