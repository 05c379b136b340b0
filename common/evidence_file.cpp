// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"

#include "common/folder_entries.h"

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

constexpr qint64 working_copy_block_bytes = 1 << 20;

// Reading must leave the access time alone; systems without the flag keep it by mounting evidence read-only.
#ifdef O_NOATIME
constexpr int keep_access_time = O_NOATIME;
#else
constexpr int keep_access_time = 0;
#endif

/** A descriptor, or -1 with errno set. Waits for nobody, not even for the writer of a FIFO. */
int open_descriptor(const std::filesystem::path &path)
{
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int descriptor = ::open(path.c_str(), flags | keep_access_time);
    if (descriptor == -1 && errno == EPERM)
        return ::open(path.c_str(), flags); // only the owner may keep the access time
    return descriptor;
}

std::filesystem::path absolute_path(const std::filesystem::path &path)
{
    std::error_code error;
    return std::filesystem::absolute(path, error);
}

std::filesystem::path without_final_slash(const std::filesystem::path &path)
{
    return path.has_filename() ? path : path.parent_path();
}

/** The path made absolute, links not followed. */
std::filesystem::path as_written(const std::filesystem::path &path)
{
    return without_final_slash(absolute_path(path).lexically_normal());
}

/**
 * The place that @p path leads to when every link on the way is followed. Unlike the standard library's functions this
 * one also follows a link to something that does not exist: opening that link for writing would create the thing.
 */
std::filesystem::path with_links_followed(const std::filesystem::path &path)
{
    constexpr int most_links = 40; // as many as the kernel follows; opening a longer chain fails
    const std::filesystem::path start = absolute_path(path);
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
    return without_final_slash(place);
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
    QByteArray block(working_copy_block_bytes, Qt::Uninitialized);
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
    return open_evidence_file(file, to_path(file.fileName()));
}

std::optional<QString> open_evidence_file(QFile &file, const std::filesystem::path &path)
{
    // QFile itself words these errors so.
    if (path.empty())
        return u"No file name specified"_s;
    const int descriptor = open_descriptor(path);
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

bool is_safe_target(const std::filesystem::path &path, const std::filesystem::path &source_root)
{
    if (source_root.empty())
        return true;
    const std::filesystem::path root = with_links_followed(source_root);
    return !is_at_or_below(with_links_followed(path), root)
           || is_written_below(as_written(path), as_written(source_root)) || is_in_plain_sight(as_written(path), root);
}

bool is_safe_target(const QString &path, const QString &source_root)
{
    return is_safe_target(to_path(path), to_path(source_root));
}

bool is_same_file(const std::filesystem::path &first, const std::filesystem::path &second)
{
    std::error_code error;
    return std::filesystem::equivalent(first, second, error);
}

bool is_same_file(const QString &first, const QString &second)
{
    return is_same_file(to_path(first), to_path(second));
}
