// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_look.h"

#include "host/files/descriptor.h"
#include "host/files/file_times.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_files.h"
#include "host/source/evidence_folder.h"
#include "host/source/ios_log_files.h"
#include "host/source/working_copy.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView database_magic("SQLite format 3\0", 16); // https://www.sqlite.org/fileformat.html
constexpr QByteArrayView log_magics[] = {"\x37\x7f\x06\x82", "\x37\x7f\x06\x83"};

file_state state_of(const struct stat &status)
{
    file_state state;
    state.identity = QString::number(quint64(status.st_dev)) + u':' + QString::number(quint64(status.st_ino));
    state.size = qint64(status.st_size);
    state.modified = utc_text(modification_time(status));
    state.changed = utc_text(change_time(status));
    return state;
}

bool has_database_name(const QString &path)
{
    return path.endsWith(".db"_L1);
}

/** Why a file that can be hashed is no database, judged by its first bytes. */
QString why_no_database(QByteArrayView start)
{
    if (start.isEmpty())
        return u"it is empty, and no database"_s;
    if (start.first(qMin(start.size(), database_magic.size())) != database_magic)
        return u"it is no SQLite database"_s;
    return {};
}

/** What is odd about the content of another file, judged by its first bytes. */
QString oddity(const QString &path, QByteArrayView start)
{
    const bool is_log = path.endsWith("-wal"_L1) && !start.isEmpty();
    if (is_log && std::none_of(std::begin(log_magics), std::end(log_magics), [start](QByteArrayView magic) {
            return start.startsWith(magic);
        }))
        return u"it is no write-ahead log"_s;
    return {};
}

/** Opens the file and fills in its state. Gives an open file only if it may be read. */
descriptor open_and_describe(evidence_file &file, const QString &full_path, std::optional<file_state> &state)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(full_path).constData(), &status) != 0) {
        const int error = errno;
        const bool is_link = QFileInfo(full_path).isSymLink();
        const bool is_absent = (error == ENOENT || error == ENOTDIR) && !is_link;
        file.state = is_absent ? evidence_file::presence::absent : evidence_file::presence::unreadable;
        file.reason = is_absent ? QString() : is_link ? u"it is a link that leads nowhere"_s : system_error_text(error);
        return {};
    }
    state = state_of(status);
    if (!S_ISREG(status.st_mode)) {
        file.state = evidence_file::presence::refused;
        file.reason = u"it is not a regular file"_s;
        return {};
    }
    descriptor opened = open_evidence(full_path);
    if (!opened.is_open() || ::fstat(opened.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        file.state = evidence_file::presence::unreadable;
        file.reason = system_error_text(errno);
        return {};
    }
    state = state_of(status);
    file.state = evidence_file::presence::present;
    return opened;
}

QString mebibytes(qint64 bytes)
{
    return QString::number(bytes / (1 << 20)) + u" MiB"_s;
}

/** Where the bytes of a file go while it is hashed. */
struct file_targets
{
    QString copy; ///< empty: no working copy is made
    std::function<void(QByteArrayView block)> take_block = [](QByteArrayView) {};
};

void look_at(evidence_file &file, const QString &full_path, const file_targets &targets, qint64 most_bytes,
             const hash_observer &hashed)
{
    const descriptor opened = open_and_describe(file, full_path, file.before);
    if (!opened.is_open())
        return;
    struct stat status = {};
    ::fstat(opened.number(), &status);
    if (!targets.copy.isEmpty() && status.st_size > most_bytes) {
        file.state = evidence_file::presence::refused;
        file.reason = u"it has "_s + QString::number(qint64(status.st_size)) + u" bytes ("_s + mebibytes(status.st_size)
                      + u"), more than the "_s + mebibytes(most_bytes) + u" that --max-database allows"_s;
        return;
    }

    std::optional<working_copy> copy;
    if (!targets.copy.isEmpty())
        copy.emplace(targets.copy, status.st_mode);
    sha256 hash;
    QByteArray start;
    const bool is_read = read_blocks(opened.number(), [&](QByteArrayView block) {
        if (start.isEmpty())
            start = block.first(qMin<qsizetype>(block.size(), database_magic.size())).toByteArray();
        hash.add(block);
        if (copy)
            copy->add(block);
        targets.take_block(block);
        hashed(block.size());
    });
    if (!is_read) {
        file.state = evidence_file::presence::unreadable;
        file.reason = system_error_text(errno);
        return;
    }
    file.before->sha256 = hash.result();
    file.reason = has_database_name(file.path) ? why_no_database(start) : oddity(file.path, start);
    if (has_database_name(file.path) && !file.reason.isEmpty())
        file.state = evidence_file::presence::unreadable;
    if (copy)
        file.copy_sha256 = copy->hash();
}

/** A file that was read before and is not now is not known to have changed. */
void say_unread_again(evidence_file &file, const QString &reason)
{
    file.state = evidence_file::presence::unreadable;
    file.reason = u"it cannot be read again: "_s + reason;
}

void look_again(evidence_file &file, const QString &full_path, const hash_observer &hashed)
{
    evidence_file now;
    const descriptor opened = open_and_describe(now, full_path, file.after);
    if (now.state == evidence_file::presence::unreadable && file.before && !file.before->sha256.isEmpty() && file.after)
        return say_unread_again(file, now.reason);
    // What was not read before is not read now: its state alone is compared.
    if (!opened.is_open() || (file.before && file.before->sha256.isEmpty()))
        return;
    sha256 hash;
    if (read_blocks(opened.number(), [&](QByteArrayView block) {
            hash.add(block);
            hashed(block.size());
        }))
        file.after->sha256 = hash.result();
    else
        say_unread_again(file, system_error_text(errno));
}

QStringList listing_of(const evidence_source &source)
{
    if (source.kind == &ios_uid_kind) // other files in the log's folder are not evidence
        return QFileInfo(source.log_file).exists() || QFileInfo(source.log_file).isSymLink() ? evidence_paths(source)
                                                                                             : QStringList();
    return source.kind == &macos_kind ? entry_names(listed_folder(source)) : QStringList();
}

} // namespace

evidence_state look_before(const evidence_source &source, const evidence_places &places, qint64 most_database_bytes,
                           const hash_observer &hashed)
{
    evidence_state evidence;
    evidence.listing_before = listing_of(source);
    std::optional<ios_log_files> log;
    if (source.kind == &ios_uid_kind)
        log.emplace(places.ios_lines, places.unparsed_lines);
    const QStringList paths = evidence_paths(source);
    for (const QString &path : paths) {
        evidence_file file;
        file.path = path;
        if (const std::optional<QString> refusal = refused_link(source, source.root + path)) {
            file.state = evidence_file::presence::refused;
            file.reason = *refusal;
            evidence.files.append(file);
            continue;
        }
        file_targets targets;
        if (log)
            targets.take_block = [&log](QByteArrayView block) { log->add(block); };
        else if (!source.is_taken_out)
            targets.copy = places.copy_folder + u'/' + path;
        look_at(file, source.root + path, targets, most_database_bytes, hashed);
        if (const std::optional<QString> target = link_out_of_source(source, source.root + path);
            target && file.reason.isEmpty())
            file.reason = u"it is reached by a link that leads out of the source, to "_s + *target;
        if (source.is_taken_out && file.state == evidence_file::presence::present)
            file.copy_sha256 = file.before->sha256; // it is a copy itself
        evidence.files.append(file);
    }
    if (log) {
        log->finish();
        evidence.unparsed_lines = log->unparsed_counts();
        evidence_file &file = evidence.files.first();
        if (file.reason.isEmpty())
            file.reason = log->oddity();
    }
    return evidence;
}

void look_after(evidence_state &evidence, const evidence_source &source, const hash_observer &hashed)
{
    for (evidence_file &file : evidence.files) {
        file.after.reset(); // of an earlier look
        if (const std::optional<QString> refusal = refused_link(source, source.root + file.path); !refusal)
            look_again(file, source.root + file.path, hashed);
        else if (file.before && !file.before->sha256.isEmpty())
            file.reason = *refusal; // what was read is gone, and this stands in its place
    }
    evidence.listing_after = listing_of(source);
}
