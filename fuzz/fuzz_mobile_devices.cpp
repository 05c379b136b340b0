// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/devices/mobile_devices.h"
#include "host/devices/preferences_devices.h"

using namespace Qt::StringLiterals;

/** The input is a property list: the list of classic devices, or the preferences. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const auto read : {read_mobile_devices, read_preferences_devices}) {
        const device_list list = read(bytes);
        for (const host_device &device : list.devices)
            require(!host_device_line(device, {1, "x"_L1, u"y"_s}).isEmpty(), "a device without a line");
        require(list.problems.isEmpty() || list.devices.isEmpty(), "devices of a list that was refused");
    }
    return 0;
}
