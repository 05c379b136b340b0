// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_REGISTRY_DEVICES_H
#define HOST_DEVICES_REGISTRY_DEVICES_H

#include "host/devices/host_device.h"

#include <QByteArray>

/** Whether this build can read registry hives. */
bool can_read_registry();

/**
 * The devices of Windows' SYSTEM hive (docs/formats.md): of each control set those below BTHPORT's Devices, then those
 * that only its Keys name. Of what stands below Keys only names are read: the rest is secret. Nothing in the hive is
 * trusted; a damaged one is read as far as it goes, with a problem. One that was not closed in order gives a note.
 */
device_list read_registry_devices(const QByteArray &hive);

#endif
