// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/function_log.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/macos/device_tables.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr function_log log_find(u"void bluetooth_logs_macos::find_source_file()");

/** A list of this path alone, or an empty list when nothing stands there. */
QStringList found_at(const QString &path)
{
    if (!QFileInfo::exists(path)) {
        log_find(u"[find_source_file] file not found: "_s + path);
        return {};
    }
    log_find(u"[find_source_file] file found: "_s + path);
    return {path};
}

} // namespace

void bluetooth_logs_macos::find_source_file()
{
    log_find(u"[find_source_file] start");
    const QString folder = source_root_path + u"Library/Bluetooth/"_s;
    source_file_paired_list = found_at(folder + device_table::paired.file_name);
    source_file_other_list = found_at(folder + device_table::other.file_name);
    log_find(u"[find_source_file] end");
}
