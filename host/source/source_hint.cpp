// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/source_hint.h"

#include "host/source/macos_databases.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool is_macos_database(const QString &name)
{
    return std::any_of(std::begin(macos_databases), std::end(macos_databases),
                       [&name](const auto *database) { return name == database->file_name; });
}

} // namespace

bool holds_macos_databases(const QString &root)
{
    const QString folder = root + (root.endsWith(u'/') ? u""_s : u"/"_s) + macos_database_folder;
    return std::any_of(std::begin(macos_databases), std::end(macos_databases),
                       [&folder](const auto *database) { return QFileInfo::exists(folder + database->file_name); });
}

QString macos_root_around(const QString &path)
{
    QString data_volume = path + u"/System/Volumes/Data"_s;
    if (holds_macos_databases(data_volume))
        return data_volume;
    // At most a database, its folder and "Library" stand between the path and the root.
    QString root = path;
    for (int i = 0; i < 3 && root.size() > 1; ++i) {
        root = QFileInfo(root).path();
        if (holds_macos_databases(root))
            return root;
    }
    return {};
}

QString source_hint(const QString &path)
{
    const QString root = macos_root_around(path);
    if (!root.isEmpty())
        return u"the macOS source that it belongs to is -i "_s + root;
    if (is_macos_database(QFileInfo(path).fileName()))
        return u"a macOS source is the folder that holds this database as Library/Bluetooth/"_s
               + QFileInfo(path).fileName();
    return {};
}
