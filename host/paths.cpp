// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/paths.h"

#include <QDir>
#include <QFile>

namespace filesystem = std::filesystem;

filesystem::path to_std_path(const QString &path)
{
    return filesystem::path(QFile::encodeName(path).toStdString());
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
    filesystem::path place = filesystem::weakly_canonical(to_std_path(QDir().absoluteFilePath(path)), error);
    while (!filesystem::equivalent(place, root, error)) {
        if (!place.has_relative_path())
            return false;
        place = place.parent_path();
    }
    return true;
}

bool remove_tree(const QString &path)
{
    std::error_code error;
    filesystem::remove_all(to_std_path(path), error);
    return !error;
}
