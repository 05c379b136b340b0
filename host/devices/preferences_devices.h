// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_PREFERENCES_DEVICES_H
#define HOST_DEVICES_PREFERENCES_DEVICES_H

#include "host/devices/host_device.h"

#include <QByteArray>

/**
 * The devices of com.apple.Bluetooth.plist (docs/formats.md): the entries of DeviceCache, then the addresses that only
 * another array of the list names. Nothing in the list is trusted; one that cannot be read gives a problem.
 */
device_list read_preferences_devices(const QByteArray &bytes);

#endif
