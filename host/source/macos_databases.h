// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_MACOS_DATABASES_H
#define HOST_SOURCE_MACOS_DATABASES_H

#include <QLatin1StringView>

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

#endif
