// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_MOBILE_DEVICES_H
#define HOST_DEVICES_MOBILE_DEVICES_H

#include "host/devices/host_device.h"

#include <QByteArray>

/**
 * The devices of com.apple.MobileBluetooth.devices.plist (docs/formats.md), a dictionary by address: every entry
 * that is a dictionary itself, or has an address for its key. Nothing in the list is trusted; one that cannot be read
 * gives a problem.
 */
device_list read_mobile_devices(const QByteArray &bytes);

#endif
