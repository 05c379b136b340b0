// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_files.h"

#include "host/source/evidence_folder.h"
#include "host/source/macos_databases.h"
#include "host/source/windows_hive.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** What SQLite keeps beside a database. */
constexpr QLatin1StringView database_companions[] = {"-wal"_L1, "-shm"_L1, "-journal"_L1};

} // namespace

namespace {

/** What a source of this kind may hold where it stands in a folder of its own. */
QStringList paths_of_kind(const evidence_source &source)
{
    if (source.kind == &ios_uid_kind)
        return {QFileInfo(source.log_file).fileName()};
    if (source.kind == &winos_kind)
        return windows_hive_paths(source.root);
    QStringList paths;
    for (const macos_database *database : macos_databases) {
        const QString path = path_in_source(*database);
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
    paths.append(macos_mobile_devices_file);
    return paths;
}

} // namespace

QStringList evidence_paths(const evidence_source &source)
{
    QStringList paths = paths_of_kind(source);
    for (const QString &path : source.files_taken_out) {
        if (!paths.contains(path))
            paths.append(path);
    }
    return paths;
}

QString listed_folder(const evidence_source &source)
{
    return source.kind == &macos_kind ? source.root + macos_database_folder : QString();
}
