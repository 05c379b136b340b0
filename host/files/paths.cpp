// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/paths.h"

#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/system_error.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include <sys/stat.h>

namespace filesystem = std::filesystem;
using namespace Qt::StringLiterals;

namespace {

/**
 * The absolute path without doubled or final "/" and without "." and "..". What stands before a ".." may be a link,
 * and the system means the folder above the link's target then: such a path is followed, not shortened.
 */
QString clean_path(const QString &path, const QString &name)
{
    return path.contains("/.."_L1) ? resolved_path(path, name) : QDir::cleanPath(path);
}

} // namespace

filesystem::path to_std_path(const QString &path)
{
    return filesystem::path(QFile::encodeName(path).toStdString());
}

QString absolute_path(const QString &path, const QString &name)
{
    if (path.isEmpty())
        throw host_error(error_kind::refused, name + u" is an empty path"_s);
    if (path.startsWith(u'/'))
        return clean_path(path, name);
    std::error_code error;
    const filesystem::path folder = filesystem::current_path(error);
    if (error)
        throw host_error(error_kind::refused, name + u" is a relative path, "_s + path
                                                  + u", and the working folder is gone: give an absolute path"_s);
    const QString working_folder = QFile::decodeName(folder.c_str());
    if (to_std_path(working_folder) != folder)
        throw host_error(error_kind::refused,
                         name + u" is a relative path, "_s + path
                             + u", and the path of the working folder is no UTF-8: give an absolute "
                               "path"_s);
    return clean_path(working_folder + u'/' + path, name);
}

QString resolved_path(const QString &path, const QString &name)
{
    std::error_code error;
    const filesystem::path followed = filesystem::weakly_canonical(to_std_path(path), error);
    const QString text = QFile::decodeName(followed.c_str());
    if (error || to_std_path(text) != followed)
        throw host_error(error_kind::refused, name + u" cannot be followed to a folder: "_s + path);
    return QDir::cleanPath(text);
}

QString resolved_down_to(const QString &folder, const QString &path, const QString &name)
{
    for (qsizetype end = path.indexOf(u'/', 1); end != -1; end = path.indexOf(u'/', end + 1)) {
        if (resolved_path(path.first(end), name) == folder)
            return folder + path.sliced(end);
    }
    return resolved_path(path, name);
}

bool path_exists(const QString &path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) == 0)
        return true;
    constexpr int answers[] = {ENOENT, ENOTDIR, ELOOP, ENAMETOOLONG};
    if (std::find(std::begin(answers), std::end(answers), errno) == std::end(answers))
        throw host_error(error_kind::io,
                         u"whether "_s + path + u" exists cannot be seen: "_s + system_error_text(errno));
    return false;
}

bool is_inside(const QString &path, const QString &folder)
{
    const filesystem::path root = to_std_path(folder);
    std::error_code error;
    filesystem::path place = filesystem::weakly_canonical(to_std_path(path), error);
    if (error) // a loop of links, or a folder that nobody lets us look into
        place = to_std_path(path).lexically_normal();
    filesystem::path real_root = filesystem::weakly_canonical(root, error);
    if (!real_root.has_filename()) // it ends with "/"
        real_root = real_root.parent_path();
    // By the names first: a look that fails must not make the one lie outside of the other.
    if (!error
        && std::mismatch(real_root.begin(), real_root.end(), place.begin(), place.end()).first == real_root.end())
        return true;
    while (!filesystem::equivalent(place, root, error)) {
        if (!place.has_relative_path())
            return false;
        place = place.parent_path();
    }
    return true;
}

void make_folder(const QString &path)
{
    if (is_folder(path))
        return;
    if (errno == ENOENT)
        make_folder(path.left(qMax<qsizetype>(1, path.lastIndexOf(u'/'))));
    const folder_entry folder(path);
    int error = folder.make_folder();
    if (error == EEXIST) // made by another run meanwhile, or no folder
        error = is_folder(path) ? 0 : errno;
    else if (error == 0)
        error = folder.sync_folder();
    if (error != 0)
        throw host_error(error_kind::io, path + u" cannot be written: "_s + system_error_text(error));
}

void remove_file(const QString &path)
{
    const int error = folder_entry(path).remove();
    if (error != 0 && error != ENOENT)
        throw host_error(error_kind::io, path + u" cannot be removed: "_s + system_error_text(error));
}
