// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_MACOS_DATABASES_H
#define HOST_SOURCE_MACOS_DATABASES_H

#include <QLatin1StringView>
#include <QString>

#include <algorithm>
#include <iterator>

/**
 * One of the two Bluetooth low-energy device databases of macOS, and the result table that its rows go to. Names and
 * layout: docs/formats.md.
 */
struct macos_database
{
    QLatin1StringView file_name;
    QLatin1StringView device_table; ///< its own table
    QLatin1StringView result_table; ///< the table of the result database
};

/** The folder of the databases, relative to the root of the source. */
inline constexpr QLatin1StringView macos_database_folder("Library/Bluetooth/");
inline constexpr QLatin1StringView macos_preferences_file("Library/Preferences/com.apple.Bluetooth.plist");
inline constexpr QLatin1StringView
    macos_mobile_devices_file("Library/Bluetooth/Library/Preferences/com.apple.MobileBluetooth.devices.plist");

inline constexpr macos_database other_devices_database = {
    QLatin1StringView("com.apple.MobileBluetooth.ledevices.other.db"),
    QLatin1StringView("OtherDevices"),
    QLatin1StringView("devices"),
};
inline constexpr macos_database paired_devices_database = {
    QLatin1StringView("com.apple.MobileBluetooth.ledevices.paired.db"),
    QLatin1StringView("PairedDevices"),
    QLatin1StringView("paired_devices"),
};
inline constexpr const macos_database *macos_databases[] = {&other_devices_database, &paired_devices_database};

/** The path of the database, relative to the root of the source. */
inline QString path_in_source(const macos_database &database)
{
    return QString(macos_database_folder) + database.file_name;
}

/** "com.apple….other.db.12:00:00_01-31-2026.corrupt" and its like: what the system keeps of a damaged database. */
inline bool is_leftover(const QString &name)
{
    return name.endsWith(QLatin1StringView(".corrupt"))
           && std::any_of(std::begin(macos_databases), std::end(macos_databases),
                          [&name](const auto *database) { return name.startsWith(database->file_name); });
}

#endif
