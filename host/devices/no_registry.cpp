// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/registry_devices.h"

using namespace Qt::StringLiterals;

bool can_read_registry()
{
    return false;
}

device_list read_registry_devices(const QByteArray &)
{
    device_list result;
    result.problems.append(u"this build cannot read registry hives: it was made without the library hivex"_s);
    return result;
}
