// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/hive_bytes.h"

#include <cstdio>

/** Prints a hive that knows one Bluetooth device, for tests that put one into a volume. */
int main()
{
    const hive_key device{"b4c26a7fd37a", {{"Name", hive_binary, "Car"}}};
    const hive_key parameters{"Parameters", {}, {{"Devices", {}, {device}}}};
    const hive_key set{"ControlSet001", {}, {{"Services", {}, {{"BTHPORT", {}, {parameters}}}}}};
    const QByteArray hive = hive_bytes({"root", {}, {set, {"Select", {hive_number_value("Current", 1)}}}}, 5, 5);
    return std::fwrite(hive.constData(), 1, size_t(hive.size()), stdout) == size_t(hive.size()) ? 0 : 1;
}
