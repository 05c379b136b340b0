// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_steps.h"

#include "common/plugin_static_function.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView device_found("BLE device found:");
constexpr QLatin1StringView notice("<Notice>:");

constexpr QLatin1StringView available_markers[] = {device_found};
constexpr QLatin1StringView paired_markers[] = {"active device:"_L1, notice};

constexpr QString log_line_fields::*available_values[] = {&log_line_fields::device_name, &log_line_fields::model,
                                                          &log_line_fields::identifier, &log_line_fields::date};
constexpr QString log_line_fields::*paired_values[] = {&log_line_fields::identifier, &log_line_fields::device_name,
                                                       &log_line_fields::model, &log_line_fields::status,
                                                       &log_line_fields::date};

} // namespace

// clang-format off
const bluetooth_logs_ios_uid::log_step bluetooth_logs_ios_uid::log_step::available = {
    .tab = u"devices",
    .function_info = u"void bluetooth_logs_ios_uid::extract_available_devices()",
    .open_failed = u" Destination Db opening ----FAILED---- ",
    .markers = available_markers,
    .format = {
        .start = device_found,
        .identifier = "SFDevice ID "_L1,
        .status_end = {},
    },
    .insert_statement = u"insert into devices(bookmark, device_name, model, sf_device_id, date,os_scheme_display,source_count_name) values(?,?,?,  ?,?,?,?)",
    .values = available_values,
};

const bluetooth_logs_ios_uid::log_step bluetooth_logs_ios_uid::log_step::paired = {
    .tab = u"paired_devices",
    .function_info = u"void bluetooth_logs_ios_uid::extract_paired_devices()",
    .open_failed = u" Destination Db opening ---FAILED--- ", // a dash less than above
    .markers = paired_markers,
    .format = {
        .start = notice,
        .identifier = "PI "_L1,
        .status_end = "active device: "_L1, // with its blank, which the line may lack
    },
    .insert_statement = u"insert into paired_devices(bookmark,  device_address, device_name, model, status, date,os_scheme_display,source_count_name) values(?,?,?,?,  ?,?,?,?)",
    .values = paired_values,
};
// clang-format on

void bluetooth_logs_ios_uid::log_step::log(const QString &message) const
{
    plugin_static_function::app_debug(message, function_info.toString());
}
