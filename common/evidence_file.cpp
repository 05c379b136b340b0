// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"

#include <QDir>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 copy_block_bytes = 1 << 20;

// Reading must leave the access time alone; systems without the flag keep it by mounting evidence read-only.
#ifdef O_NOATIME
constexpr int keep_access_time = O_NOATIME;
#else
constexpr int keep_access_time = 0;
#endif

/** A descriptor, or -1 with errno set. Waits for nobody, not even for the writer of a FIFO. */
int open_descriptor(const QByteArray &path)
{
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = ::open(path.constData(), flags | keep_access_time);
    if (descriptor == -1 && errno == EPERM)
        return ::open(path.constData(), flags); // only the owner may keep the access time
    return descriptor;
}

std::filesystem::path to_std_path(const QString &path)
{
    return std::filesystem::path(QFile::encodeName(path).toStdString());
}

/** The path made absolute, links not followed. */
std::filesystem::path as_written(const QString &path)
{
    return to_std_path(QDir::cleanPath(QDir().absoluteFilePath(path)));
}

/**
 * The place that @p path leads to when every link on the way is followed. Unlike the standard library's functions this
 * one also follows a link to something that does not exist: opening that link for writing would create the thing.
 */
std::filesystem::path with_links_followed(const QString &path)
{
    constexpr int most_links = 40; // as many as the kernel follows; opening a longer chain fails
    const std::filesystem::path start = to_std_path(QDir().absoluteFilePath(path));
    std::deque<std::filesystem::path> parts(start.begin(), start.end());
    std::filesystem::path place;
    int links = 0;
    while (!parts.empty()) {
        const std::filesystem::path next = place / parts.front();
        parts.pop_front();
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(next, error);
        if (error || ++links > most_links)
            place = next.lexically_normal();
        else
            parts.insert(parts.begin(), target.begin(), target.end());
    }
    return place.has_filename() ? place : place.parent_path(); // without a final "/"
}

/** Compares what exists by its identity: one folder can have names that differ in case or lie elsewhere. */
bool is_same_place(const std::filesystem::path &first, const std::filesystem::path &second)
{
    std::error_code error;
    return first == second || std::filesystem::equivalent(first, second, error);
}

bool is_at_or_below(std::filesystem::path place, const std::filesystem::path &root)
{
    while (!is_same_place(place, root)) {
        if (!place.has_relative_path())
            return false;
        place = place.parent_path();
    }
    return true;
}

bool is_written_below(const std::filesystem::path &path, const std::filesystem::path &root)
{
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

/** Whether the way to @p path comes through @p root before it comes to a link. */
bool is_in_plain_sight(const std::filesystem::path &path, const std::filesystem::path &root)
{
    std::filesystem::path way;
    for (const std::filesystem::path &part : path) {
        way /= part;
        std::error_code error;
        if (std::filesystem::is_symlink(way, error))
            return false;
        if (is_same_place(way, root))
            return true;
    }
    return false;
}

bool copy_content(QFile &source, QFile &target)
{
    QByteArray block(copy_block_bytes, Qt::Uninitialized);
    qint64 count = 0;
    while ((count = source.read(block.data(), block.size())) > 0) {
        if (target.write(block.constData(), count) != count)
            return false;
    }
    return count == 0 && target.flush();
}

} // namespace

std::optional<QString> open_evidence_file(QFile &file)
{
    // QFile itself words these errors so.
    if (file.fileName().isEmpty())
        return u"No file name specified"_s;
    const int descriptor = open_descriptor(QFile::encodeName(file.fileName()));
    if (descriptor == -1)
        return qt_error_string(errno);

    struct stat status = {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)
        && file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return {};

    ::close(descriptor);
    return S_ISDIR(status.st_mode) ? u"file to open is a directory"_s : u"Not a regular file"_s;
}

bool copy_evidence_file(const QString &source, const QString &target)
{
    QFile source_file(source);
    QFile target_file(target);
    const std::optional<QString> error = open_evidence_file(source_file);
    // A copy for everyone would show what the source's permissions, or those of a folder above it, hide.
    constexpr QFileDevice::Permissions for_its_owner = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
    if (error || !target_file.open(QIODevice::WriteOnly | QIODevice::NewOnly, for_its_owner))
        return false;

    if (copy_content(source_file, target_file))
        return true;
    target_file.remove();
    return false;
}

bool is_safe_target(const QString &path, const QString &source_root)
{
    if (source_root.isEmpty())
        return true;
    const std::filesystem::path root = with_links_followed(source_root);
    return !is_at_or_below(with_links_followed(path), root)
           || is_written_below(as_written(path), as_written(source_root)) || is_in_plain_sight(as_written(path), root);
}

bool is_same_file(const QString &first, const QString &second)
{
    std::error_code error;
    return std::filesystem::equivalent(to_std_path(first), to_std_path(second), error);
}
