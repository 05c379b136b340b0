// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_ASSIGNED_NUMBERS_H
#define HOST_DEVICES_ASSIGNED_NUMBERS_H

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

#include <optional>

// Numbers that the Bluetooth SIG assigns: https://www.bluetooth.com/specifications/assigned-numbers/

/** What a class of device says in words. */
struct device_class
{
    QStringList services;
    QLatin1StringView major; ///< empty: a number that is not assigned
    QString minor;           ///< the same
};

/** Assigned Numbers, section 2.8 (Class of Device). Empty for a number of more than 24 bits or of another format. */
device_class class_of_device(qint64 number);

/** Assigned Numbers, section 2.1 (Core Specification versions): "5.0" for 9. Empty for a number that is not assigned.
 */
QLatin1StringView bluetooth_version(qint64 lmp_version);

/** Whose number the vendor's is: "SIG" or "USB" (Device Identification Profile, section 5.6). Empty: not assigned. */
QLatin1StringView vendor_source(const std::optional<qint64> &number);

#endif
