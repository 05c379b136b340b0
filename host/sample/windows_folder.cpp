// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/sample_parts.h"

namespace {

constexpr const char *placeholder = "A placeholder of a synthetic sample, not a registry hive.\n";

} // namespace

void write_windows_files(const QString &folder)
{
    for (const QLatin1StringView file : windows_sample_files)
        write_sample_file(folder + file, placeholder);
}
