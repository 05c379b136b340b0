// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/sample/sample_parts.h"
#include "host/source/macos_databases.h"
#include "host/sqlite/sqlite.h"

#include <QCryptographicHash>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView files_root("ios_files/private/var/containers/Shared/SystemGroup/"
                                       "5A3C9E10-7B42-4D8F-9C11-0E6D2A7F4B38/");
constexpr QLatin1StringView backup_root("ios_backup/");
constexpr QLatin1StringView database_folder("Library/Database/");
constexpr QLatin1StringView list_path("Library/Preferences/com.apple.MobileBluetooth.devices.plist");
constexpr QLatin1StringView backup_domain("SysSharedContainerDomain-systemgroup.com.apple.bluetooth");
constexpr QLatin1StringView index_name("Manifest.db");
constexpr QLatin1StringView properties_name("Manifest.plist");

constexpr const char *device_list = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
    <key>6C:4A:85:0D:91:E2</key>
    <dict>
        <key>Name</key><string>Car kit</string>
        <key>DefaultName</key><string>Car kit</string>
        <key>DeviceIdVendor</key><integer>76</integer>
        <key>DeviceIdProduct</key><integer>8206</integer>
    </dict>
</dict>
</plist>
)";

constexpr const char *backup_properties = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
    <key>IsEncrypted</key><false/>
    <key>Version</key><string>10.0</string>
</dict>
</plist>
)";

QStringList database_files()
{
    QStringList names;
    for (const macos_database *database : macos_databases)
        names += {database->file_name, database->file_name + "-wal"_L1};
    return names;
}

/** The paths of the evidence below its group's folder. */
QStringList evidence_paths()
{
    QStringList paths;
    for (const QString &name : database_files())
        paths.append(QString(database_folder) + name);
    paths.append(list_path);
    return paths;
}

/** How a backup names a file: the SHA-1 of its domain and path. */
QString backup_id(const QString &path)
{
    const QByteArray name = QByteArray(backup_domain.data(), backup_domain.size()) + '-' + path.toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(name, QCryptographicHash::Sha1).toHex());
}

QString stored_path(const QString &path)
{
    const QString id = backup_id(path);
    return QString(backup_root) + id.first(2) + u'/' + id;
}

void write_index(const QString &file)
{
    try {
        sqlite_database index(file, sqlite_database::access::create);
        index.execute("CREATE TABLE Files (fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, flags INTEGER, "
                      "file BLOB)");
        sqlite_statement row(index, "INSERT INTO Files VALUES (?, ?, ?, 1, NULL)");
        for (const QString &path : evidence_paths()) {
            row.bind(0, backup_id(path));
            row.bind(1, QString(backup_domain));
            row.bind(2, path);
            row.next();
            row.reset();
        }
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, u"the sample database cannot be written: "_s + error.message());
    }
}

void rename_to_stored(const QString &directory, const QString &name)
{
    const QString target = directory + stored_path(database_folder + name);
    if (!QFile::rename(directory + backup_root + name, target))
        throw host_error(error_kind::io, u"the file cannot be written: "_s + target);
}

} // namespace

QStringList ios_sample_files()
{
    QStringList files;
    for (const QString &path : evidence_paths()) {
        for (const QLatin1StringView ending : {""_L1, "-journal"_L1, "-wal"_L1, "-shm"_L1})
            files.append(files_root + path + ending);
        files.append(stored_path(path));
    }
    QStringList unfinished{index_name};
    for (const macos_database *database : macos_databases)
        unfinished.append(database->file_name);
    for (const QString &name : std::as_const(unfinished)) {
        for (const QLatin1StringView ending : {""_L1, "-journal"_L1, "-wal"_L1, "-shm"_L1})
            files.append(QString(backup_root) + name + ending);
    }
    files.append(QString(backup_root) + properties_name);
    return files;
}

void write_ios_sources(const QString &directory, sample_names names)
{
    write_ledevices_databases(directory + files_root + database_folder, names);
    write_sample_file(directory + files_root + list_path, device_list);

    write_ledevices_databases(directory + backup_root, names);
    for (const QString &name : database_files())
        rename_to_stored(directory, name);
    write_sample_file(directory + stored_path(list_path), device_list);
    write_index(directory + backup_root + index_name);
    write_sample_file(directory + backup_root + properties_name, backup_properties);
}
