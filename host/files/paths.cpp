// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/paths.h"

#include "host/files/host_error.h"
#include "host/files/system_error.h"

#include <QDir>
#include <QFile>

namespace filesystem = std::filesystem;
using namespace Qt::StringLiterals;

namespace {

/**
 * The absolute path without doubled or final "/" and without "." and "..". What stands before a ".." may be a link,
 * and the system means the folder above the link's target then: such a path is followed, not shortened.
 */
QString clean_path(const QString &path, const QString &name)
{
    if (!path.contains("/.."_L1))
        return QDir::cleanPath(path);
    std::error_code error;
    const filesystem::path followed = filesystem::weakly_canonical(to_std_path(path), error);
    const QString text = QFile::decodeName(followed.c_str());
    if (error || to_std_path(text) != followed)
        throw host_error(error_kind::refused, name + u" cannot be followed to a folder: "_s + path);
    return QDir::cleanPath(text);
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

bool path_exists(const QString &path)
{
    std::error_code error;
    return filesystem::exists(filesystem::symlink_status(to_std_path(path), error));
}

bool is_inside(const QString &path, const QString &folder)
{
    const filesystem::path root = to_std_path(folder);
    std::error_code error;
    filesystem::path place = filesystem::weakly_canonical(to_std_path(path), error);
    if (error) // a loop of links, or a folder that nobody lets us look into
        place = to_std_path(path).lexically_normal();
    while (!filesystem::equivalent(place, root, error)) {
        if (!place.has_relative_path())
            return false;
        place = place.parent_path();
    }
    return true;
}

void make_folder(const QString &path)
{
    std::error_code error;
    filesystem::create_directories(to_std_path(path), error);
    if (error)
        throw host_error(error_kind::io, path + u" cannot be written: "_s + system_error_text(error.value()));
}
