// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/devices/registry_devices.h"

using namespace Qt::StringLiterals;

/** The input is a registry hive. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const device_list list = read_registry_devices(bytes);
    for (const host_device &device : list.devices)
        require(!host_device_line(device, {1, "x"_L1, u"y"_s}).isEmpty(), "a device without a line");
    return 0;
}
