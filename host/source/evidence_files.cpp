// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_files.h"

#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_folder.h"
#include "host/source/ios_lines.h"
#include "host/source/macos_databases.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block_bytes = 1 << 16;                        // what was read is hashed from the cache
constexpr QByteArrayView database_magic("SQLite format 3\0", 16); // https://www.sqlite.org/fileformat.html
constexpr QByteArrayView log_magics[] = {"\x37\x7f\x06\x82", "\x37\x7f\x06\x83"};

/** What SQLite keeps beside a database. */
constexpr QLatin1StringView database_companions[] = {"-wal"_L1, "-shm"_L1, "-journal"_L1};

constexpr QLatin1StringView presence_names[] = {"present"_L1, "absent"_L1, "unreadable"_L1, "refused"_L1};

/** Reads a file to its end and gives every block to @p take. False with errno set when it cannot be read. */
bool read_blocks(int file, const std::function<void(QByteArrayView block)> &take)
{
    QByteArray buffer(block_bytes, Qt::Uninitialized);
    for (;;) {
        const auto count = ::read(file, buffer.data(), size_t(buffer.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        take(QByteArrayView(buffer.constData(), count));
    }
}

file_state state_of(const struct stat &status)
{
    file_state state;
    state.identity = QString::number(quint64(status.st_dev)) + u':' + QString::number(quint64(status.st_ino));
    state.size = qint64(status.st_size);
#ifdef Q_OS_DARWIN
    state.modified = utc_text(status.st_mtimespec);
    state.changed = utc_text(status.st_ctimespec);
#else
    state.modified = utc_text(status.st_mtim);
    state.changed = utc_text(status.st_ctim);
#endif
    return state;
}

/** A working copy while it is written: readable by nobody who may not read the original, writable by its owner. */
class working_copy
{
public:
    working_copy(const QString &copy_path, mode_t mode)
        : path(copy_path)
    {
        make_folder(QFileInfo(path).path());
        file = descriptor(::open(QFile::encodeName(path).constData(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode & 0700));
        if (!file.is_open() || ::fchmod(file.number(), (mode & 0777) | S_IRUSR | S_IWUSR) != 0)
            fail();
    }

    void add(QByteArrayView block)
    {
        while (!block.isEmpty()) {
            const auto count = ::write(file.number(), block.data(), size_t(block.size()));
            if (count < 0 && errno == EINTR)
                continue;
            if (count <= 0)
                fail();
            block = block.sliced(count);
        }
    }

    /** The hash of what the disk holds now. */
    QString hash()
    {
        if (::fsync(file.number()) != 0)
            fail();
        file = descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
        sha256 hash;
        if (!file.is_open() || !read_blocks(file.number(), [&hash](QByteArrayView block) { hash.add(block); }))
            fail();
        return hash.result();
    }

private:
    [[noreturn]] void fail() const
    {
        throw host_error(exit_code::internal_error,
                         u"the working copy "_s + path + u" cannot be written: "_s + system_error_text(errno));
    }

    QString path;
    descriptor file;
};

bool is_database_name(const QString &path)
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

/** Opens the file and fills in what can be told without reading it. Gives an open file only if it may be read. */
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
    file.reason = is_database_name(file.path) ? why_no_database(start) : oddity(file.path, start);
    if (is_database_name(file.path) && !file.reason.isEmpty())
        file.state = evidence_file::presence::unreadable;
    if (copy)
        file.copy_sha256 = copy->hash();
}

void look_again(evidence_file &file, const QString &full_path, const hash_observer &hashed)
{
    evidence_file now;
    const descriptor opened = open_and_describe(now, full_path, file.after);
    // What was not read before is not read now: its state alone is compared.
    if (!opened.is_open() || (file.before && file.before->sha256.isEmpty()))
        return;
    sha256 hash;
    if (read_blocks(opened.number(), [&](QByteArrayView block) {
            hash.add(block);
            hashed(block.size());
        }))
        file.after->sha256 = hash.result();
}

std::optional<QString> difference(const std::optional<file_state> &before, const std::optional<file_state> &now)
{
    if (!before && !now)
        return {};
    if (!before)
        return u"it was not there before"_s;
    if (!now)
        return u"it is gone"_s;
    if (!before->identity.isEmpty() && before->identity != now->identity)
        return u"it is another file than before"_s;
    if (before->size != now->size)
        return u"its size was "_s + QString::number(before->size) + u" bytes and is "_s + QString::number(now->size);
    if (before->sha256 != now->sha256)
        return u"its content was changed: its SHA-256 was "_s + before->sha256 + u" and is "_s + now->sha256;
    if (before->modified != now->modified)
        return u"it was modified"_s;
    if (before->changed != now->changed)
        return u"its entry was changed: permissions, owner, links or times"_s;
    return {};
}

QJsonValue text_or_null(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue state_or_null(const std::optional<file_state> &state)
{
    return state ? QJsonValue(state->to_json()) : QJsonValue();
}

std::optional<file_state> state_from(const QJsonValue &json)
{
    if (!json.isObject())
        return {};
    return file_state::from_json(json.toObject());
}

/** "com.apple….other.db.12:00:00_01-31-2026.corrupt" and its like. */
bool is_leftover(const QString &name)
{
    return name.endsWith(".corrupt"_L1)
           && std::any_of(std::begin(macos_databases), std::end(macos_databases),
                          [&name](const auto *database) { return name.startsWith(database->file_name); });
}

} // namespace

QJsonObject file_state::to_json() const
{
    return {{u"size"_s, size}, {u"modified"_s, modified}, {u"changed"_s, changed}, {u"sha256"_s, text_or_null(sha256)}};
}

file_state file_state::from_json(const QJsonObject &json)
{
    file_state state;
    state.size = json.value("size"_L1).toInteger();
    state.modified = json.value("modified"_L1).toString();
    state.changed = json.value("changed"_L1).toString();
    state.sha256 = json.value("sha256"_L1).toString();
    return state;
}

QLatin1StringView presence_name(evidence_file::presence state)
{
    return presence_names[int(state)];
}

QJsonObject evidence_file::to_json() const
{
    return {{u"path"_s, path},
            {u"state"_s, QString(presence_name(state))},
            {u"reason"_s, text_or_null(reason)},
            {u"before"_s, state_or_null(before)},
            {u"after"_s, state_or_null(after)},
            {u"copy_sha256"_s, text_or_null(copy_sha256)}};
}

evidence_file evidence_file::from_json(const QJsonObject &json)
{
    evidence_file file;
    file.path = json.value("path"_L1).toString();
    const auto name = std::find(std::begin(presence_names), std::end(presence_names),
                                json.value("state"_L1).toString());
    if (name != std::end(presence_names))
        file.state = presence(name - std::begin(presence_names));
    file.reason = json.value("reason"_L1).toString();
    file.before = state_from(json.value("before"_L1));
    file.after = state_from(json.value("after"_L1));
    file.copy_sha256 = json.value("copy_sha256"_L1).toString();
    return file;
}

QStringList evidence_state::changes() const
{
    QStringList texts;
    QStringList known;
    for (const evidence_file &file : files) {
        known.append(QFileInfo(file.path).fileName());
        if (const std::optional<QString> change = difference(file.before, file.after))
            texts.append(file.path + u": "_s + *change);
    }
    for (const QString &name : listing_after) {
        if (!listing_before.contains(name) && !known.contains(name))
            texts.append(QString(macos_database_folder) + name + u": it was not there before"_s);
    }
    for (const QString &name : listing_before) {
        if (!listing_after.contains(name) && !known.contains(name))
            texts.append(QString(macos_database_folder) + name + u": it is gone"_s);
    }
    return texts;
}

QStringList evidence_paths(const evidence_source &source)
{
    if (source.kind == &ios_uid_kind)
        return {QFileInfo(source.log_file).fileName()};
    if (source.kind != &macos_kind)
        return {};
    QStringList paths;
    for (const macos_database *database : macos_databases) {
        const QString path = QString(macos_database_folder) + database->file_name;
        paths.append(path);
        for (const QLatin1StringView companion : database_companions)
            paths.append(path + companion);
    }
    const QStringList names = entry_names(listed_folder(source));
    for (const QString &name : names) {
        if (is_leftover(name))
            paths.append(QString(macos_database_folder) + name);
    }
    paths.append(macos_preferences_file);
    return paths;
}

QString listed_folder(const evidence_source &source)
{
    return source.kind == &macos_kind ? source.root + macos_database_folder : QString();
}

namespace {

QStringList listing_of(const evidence_source &source)
{
    if (source.kind == &ios_uid_kind) // of the folder that somebody put the log into nothing else is evidence
        return path_exists(source.log_file) ? evidence_paths(source) : QStringList();
    return source.kind == &macos_kind ? entry_names(listed_folder(source)) : QStringList();
}

} // namespace

evidence_state look_before(const evidence_source &source, const evidence_places &places, qint64 most_database_bytes,
                           const hash_observer &hashed)
{
    evidence_state evidence;
    evidence.listing_before = listing_of(source);
    std::optional<ios_line_writer> writer;
    std::optional<ios_line_finder> finder;
    if (source.kind == &ios_uid_kind) {
        writer.emplace(places.ios_lines);
        finder.emplace([&writer](const ios_line &line) { writer->add(line); });
    }
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
        if (finder)
            targets.take_block = [&finder](QByteArrayView block) { finder->add(block); };
        else
            targets.copy = places.copy_folder + u'/' + path;
        look_at(file, source.root + path, targets, most_database_bytes, hashed);
        if (const std::optional<QString> target = link_out_of_source(source, source.root + path);
            target && file.reason.isEmpty())
            file.reason = u"it is reached by a link that leads out of the source, to "_s + *target;
        evidence.files.append(file);
    }
    if (finder) {
        finder->finish();
        writer->commit();
    }
    return evidence;
}

void look_after(evidence_state &evidence, const evidence_source &source, const hash_observer &hashed)
{
    for (evidence_file &file : evidence.files) {
        if (!refused_link(source, source.root + file.path))
            look_again(file, source.root + file.path, hashed);
    }
    evidence.listing_after = listing_of(source);
}
