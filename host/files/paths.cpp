// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/paths.h"

#include "host/files/host_error.h"
#include "host/files/system_error.h"

#include <QDir>
#include <QFile>

namespace filesystem = std::filesystem;
using namespace Qt::StringLiterals;

filesystem::path to_std_path(const QString &path)
{
    return filesystem::path(QFile::encodeName(path).toStdString());
}

QString absolute_path(const QString &path, const QString &name)
{
    if (path.isEmpty())
        throw host_error(exit_code::usage, name + u" is an empty path"_s);
    if (path.startsWith(u'/'))
        return QDir::cleanPath(path);
    std::error_code error;
    const filesystem::path folder = filesystem::current_path(error);
    if (error)
        throw host_error(exit_code::usage, name + u" is a relative path, "_s + path
                                               + u", and the working folder is gone: give an absolute path"_s);
    return QDir::cleanPath(QFile::decodeName(folder.c_str()) + u'/' + path);
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
        throw host_error(exit_code::internal_error,
                         path + u" cannot be written: "_s + system_error_text(error.value()));
}
