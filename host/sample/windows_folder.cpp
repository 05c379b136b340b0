// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/sample_parts.h"

using namespace Qt::StringLiterals;

namespace {

constexpr const char *placeholder = "A placeholder of a synthetic sample, not a registry hive.\n";

} // namespace

void write_windows_folder(const QString &folder)
{
    const QString registry = folder + u"Windows/System32/config/"_s;
    make_sample_folder(registry);
    write_sample_file(registry + u"SOFTWARE"_s, placeholder);
    write_sample_file(registry + u"SYSTEM"_s, placeholder);
    const QString user = folder + u"Users/anna/"_s;
    make_sample_folder(user);
    write_sample_file(user + u"NTUSER.DAT"_s, placeholder);
}
