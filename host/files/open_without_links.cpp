// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/open_without_links.h"

#include "host/files/folder_listing.h"
#include "host/files/system_error.h"

#include <QList>

#include <cerrno>
#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

#ifdef O_PATH
constexpr int to_pass = O_PATH; // a folder on the way need not be readable
#else
constexpr int to_pass = O_SEARCH;
#endif
constexpr int folder_flags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr int deepest_folder = 100; // of a tree that is removed; the program makes none deeper than five

int error_of(int result)
{
    return result == 0 ? 0 : errno;
}

/** Removes what stands below a name of an open folder, and then itself. */
int remove_below(int folder, const char *name, int depth)
{
    if (::unlinkat(folder, name, 0) == 0)
        return 0;
    if ((errno != EISDIR && errno != EPERM)
        || depth == deepest_folder) // https://man7.org/linux/man-pages/man2/unlink.2.html
        return errno;
    descriptor opened(::openat(folder, name, O_RDONLY | folder_flags));
    if (!opened.is_open())
        return errno;
    const int number = opened.number();
    int first_error = 0;
    const int error_of_listing = for_each_entry(std::move(opened), [&](const dirent &entry) {
        const int error = remove_below(number, entry.d_name, depth + 1);
        first_error = first_error == 0 ? error : first_error;
    });
    if (first_error == 0)
        first_error = error_of_listing;
    return first_error == 0 ? error_of(::unlinkat(folder, name, AT_REMOVEDIR)) : first_error;
}

} // namespace

int open_step_by_step(const char *path, int flags, mode_t mode)
{
    descriptor folder(::open("/", to_pass | folder_flags));
    QByteArrayList names = QByteArray(path).split('/');
    names.removeAll(QByteArray());
    const QByteArray last = names.isEmpty() ? QByteArray(".") : names.takeLast();
    for (const QByteArray &name : std::as_const(names)) {
        if (!folder.is_open())
            return -1;
        folder = descriptor(::openat(folder.number(), name.constData(), to_pass | folder_flags));
    }
    return folder.is_open() ? ::openat(folder.number(), last.constData(), flags, mode) : -1;
}

bool is_folder(const QString &path)
{
    return open_without_links(path, to_pass | O_DIRECTORY).is_open();
}

descriptor open_without_links(const QString &path, int flags, mode_t mode)
{
    const QByteArray name = QFile::encodeName(path);
    const int all_flags = flags | O_NOFOLLOW | O_CLOEXEC;
    const int file = open_in_one_step(name.constData(), all_flags, mode);
    if (file != -1 || (errno != ENOSYS && errno != EPERM)) // some containers forbid the call
        return descriptor(file);
    return descriptor(open_step_by_step(name.constData(), all_flags, mode));
}

QString open_case_file(QFile &file, const QString &path)
{
    descriptor opened = open_without_links(path, O_RDONLY | O_NONBLOCK);
    struct stat status = {};
    if (!opened.is_open() || ::fstat(opened.number(), &status) != 0)
        return system_error_text(errno);
    if (!S_ISREG(status.st_mode))
        return u"it is not a regular file"_s;
    file.setFileName(path);
    if (!file.open(opened.number(), QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return file.errorString();
    opened.release();
    return {};
}

folder_entry::folder_entry(const QString &path)
    : name(QFile::encodeName(path.sliced(path.lastIndexOf(u'/') + 1)))
{
    const QString folder_path = path.left(qMax<qsizetype>(1, path.lastIndexOf(u'/')));
    folder = open_without_links(folder_path, O_RDONLY | O_DIRECTORY);
    is_readable = folder.is_open();
    if (!is_readable && errno == EACCES)
        folder = open_without_links(folder_path, to_pass | O_DIRECTORY);
    error = folder.is_open() ? 0 : errno;
}

int folder_entry::make_folder() const
{
    return error == 0 ? error_of(::mkdirat(folder.number(), name.constData(), 0777)) : error;
}

int folder_entry::remove() const
{
    return error == 0 ? error_of(::unlinkat(folder.number(), name.constData(), 0)) : error;
}

int folder_entry::remove_folder() const
{
    return error == 0 ? error_of(::unlinkat(folder.number(), name.constData(), AT_REMOVEDIR)) : error;
}

int folder_entry::remove_tree() const
{
    return error == 0 ? remove_below(folder.number(), name.constData(), 0) : error;
}

int folder_entry::rename_to(const QString &new_name) const
{
    return error == 0 ? error_of(
               ::renameat(folder.number(), name.constData(), folder.number(), QFile::encodeName(new_name).constData()))
                      : error;
}

int folder_entry::sync_folder() const
{
    if (error != 0 || !is_readable || ::fsync(folder.number()) == 0)
        return error;
    return errno == EINVAL || errno == EROFS ? 0 : errno; // https://man7.org/linux/man-pages/man2/fsync.2.html
}
