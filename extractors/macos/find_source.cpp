// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "extractors/macos/device_tables.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

void log_find(const QString &message)
{
    plugin_static_function::app_debug(message, u"void bluetooth_logs_macos::find_source_file()"_s);
}

} // namespace

void bluetooth_logs_macos::find_source_file()
{
    log_find(u"[find_source_file] start"_s);
    const QString folder = source_root_path + u"Library/Bluetooth/"_s;
    find_source(device_table::paired, folder);
    find_source(device_table::other, folder);
    log_find(u"[find_source_file] end"_s);
}

void bluetooth_logs_macos::find_source(const device_table &table, const QString &folder)
{
    const QString path = folder + table.file_name;
    QStringList &found = this->*table.found;
    found.clear();
    if (!QFileInfo::exists(path)) {
        log_find(u"[find_source_file] file not found: "_s + path);
        return;
    }
    log_find(u"[find_source_file] file found: "_s + path);
    found.append(path);
}
