// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_tables.h"

// clang-format off
const log_table log_table::available = {
    .tab = u"devices",
    .log = function_log(u"void bluetooth_logs_ios_uid::extract_available_devices()"),
    .open_failed = u" Destination Db opening ----FAILED---- ",
    .format = log_line_format::found_device,
    .insert_statement = u"insert into devices(bookmark, device_name, model, sf_device_id, date,os_scheme_display,source_count_name) values(?,?,?,  ?,?,?,?)",
    .values = [](const log_line_fields &line) -> QStringList {
        return {line.device_name, line.model, line.identifier, line.date};
    },
};

const log_table log_table::paired = {
    .tab = u"paired_devices",
    .log = function_log(u"void bluetooth_logs_ios_uid::extract_paired_devices()"),
    .open_failed = u" Destination Db opening ---FAILED--- ", // a dash less than above
    .format = log_line_format::active_device,
    .insert_statement = u"insert into paired_devices(bookmark,  device_address, device_name, model, status, date,os_scheme_display,source_count_name) values(?,?,?,?,  ?,?,?,?)",
    .values = [](const log_line_fields &line) -> QStringList {
        return {line.identifier, line.device_name, line.model, line.status, line.date};
    },
};
// clang-format on
