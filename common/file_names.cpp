// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/file_names.h"

#include "common/folder_entries.h"
#include "common/plugin_static_function.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

QStringList trimmed_names_in(const QString &folder)
{
    if (!QFileInfo(folder).isDir())
        return {};
    QStringList names{u"."_s, u".."_s};
    for (const std::filesystem::directory_entry &entry : folder_entries(to_path(folder)))
        names.append(to_text(entry.path().filename()).trimmed());
    return names;
}

QString free_file_name(const QString &file, const QString &folder, const QStringList &companions)
{
    if (!folder.isEmpty())
        QDir().mkpath(folder);
    const QStringList names = trimmed_names_in(folder);
    const QSet<QString> taken(names.cbegin(), names.cend());
    const QStringList suffixes = QStringList{QString()} + companions;
    const auto is_taken = [&taken, &suffixes](const QString &name) {
        return std::any_of(suffixes.cbegin(), suffixes.cend(),
                           [&](const QString &suffix) { return taken.contains(QString(name + suffix).trimmed()); });
    };

    const QString name = file.sliced(file.lastIndexOf(u'/') + 1);
    QString candidate = name;
    for (int number = 1; !plugin_static_function::bool_cancel_extraction; ++number) {
        if (!is_taken(candidate))
            return candidate;
        candidate = QString::number(number) + u'_' + name;
    }
    return {};
}
