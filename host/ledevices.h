// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_LEDEVICES_H
#define HOST_LEDEVICES_H

#include <QLatin1StringView>

/** One of the two Bluetooth low-energy device databases of macOS, and where its rows go. */
struct ledevices_database
{
    QLatin1StringView file_name;
    QLatin1StringView device_table; ///< its table
    QLatin1StringView result_table; ///< the table of the result database
};

inline constexpr QLatin1StringView ledevices_folder("Library/Bluetooth/");
inline constexpr ledevices_database other_devices_database = {
    QLatin1StringView("com.apple.MobileBluetooth.ledevices.other.db"),
    QLatin1StringView("OtherDevices"),
    QLatin1StringView("devices"),
};
inline constexpr ledevices_database paired_devices_database = {
    QLatin1StringView("com.apple.MobileBluetooth.ledevices.paired.db"),
    QLatin1StringView("PairedDevices"),
    QLatin1StringView("paired_devices"),
};
inline constexpr const ledevices_database *ledevices_databases[] = {&other_devices_database, &paired_devices_database};

#endif
