// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/macos/device_tables.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView other_members[] = {"LastSeenTime"_L1, "LastConnectionTime"_L1};
constexpr QLatin1StringView paired_members[] = {"LastSeenTime"_L1, "LastConnectionTime"_L1, "Tags"_L1,
                                                "iCloudIdentifier"_L1};

QJsonValue to_json_text(const QVariant &value)
{
    return value.toString();
}

} // namespace

// The reader of other devices turns numbers into texts. The reader of paired devices keeps them as numbers, and the
// writers take texts only: a number leaves its column in "paired_devices" NULL.
// clang-format off
const device_table device_table::other = {
    .tab = u"devices",
    .file_name = u"com.apple.MobileBluetooth.ledevices.other.db",
    .staging = {
        .log = function_log(u"void bluetooth_logs_macos::copy_source_bluetooth_other_db()"),
        .found_list_empty = u"[copy_source_bluetooth_dbs] source_file_other_list is empty",
    },
    .reading = {
        .log = function_log(u"QList<QJsonObject> bluetooth_logs_macos::read_other_devices()"),
        .start = u"[read_other_devices] start",
        .file = u"[read_other_devices] source_other_db_file : ",
        .open_failed = u"[read_other_devices] Source Db opening ----FAILED---- ",
        .table_name = u"OtherDevices",
        .select_statement = u"SELECT * FROM OtherDevices",
        .to_json = to_json_text,
        .end = u"[read_other_devices] end",
    },
    .writing = {
        .log = function_log(u"void bluetooth_logs_macos::extract_connected_devices()"),
        .start = u"[extract_connected_devices] start",
        .copied_list_empty = u"[extract_connected_devices] source_file_copied_connected_list is empty",
        .open_failed = u"[extract_connected_devices] Destination Db opening ----FAILED---- ",
        .insert_statement = u"insert into devices(bookmark, uuid, device_name, address, source_file,last_seen_time, last_connection_time,os_scheme_display,source_count_name) values(?,?,?,?,?,?,?, ?,?)",
        .members = other_members,
        .end = u"[extract_connected_devices] end",
    },
};

const device_table device_table::paired = {
    .tab = u"paired_devices",
    .file_name = u"com.apple.MobileBluetooth.ledevices.paired.db",
    .staging = {
        .log = function_log(u"void bluetooth_logs_macos::copy_source_bluetooth_paired_db()"),
        .found_list_empty = u"[copy_source_bluetooth_dbs] source_file_paired_list is empty",
    },
    .reading = {
        .log = function_log(u"QList<QJsonObject> bluetooth_logs_macos::read_paired_devices()"),
        .start = u"[read_paired_devices] start",
        .file = u"[read_paired_devices] Using db file: ",
        .open_failed = u"[read_paired_devices] Source Db opening ----FAILED---- ",
        .table_name = u"PairedDevices",
        .select_statement = u"SELECT * FROM PairedDevices",
        .to_json = QJsonValue::fromVariant,
        .end = u"[read_paired_devices] end",
    },
    .writing = {
        .log = function_log(u"void bluetooth_logs_macos::extract_paired_devices()"),
        .start = u"[extract_paired_devices] start",
        .copied_list_empty = u"[extract_paired_devices] source_file_copied_paired_list is empty",
        .open_failed = u"[extract_paired_devices] Destination Db opening ----FAILED---- ",
        .insert_statement = u"INSERT INTO paired_devices(bookmark, uuid, device_name, address, source_file, last_seen_time, last_connection_time, apple_tags, icloud_identifier, os_scheme_display, source_count_name) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        .members = paired_members,
        .end = u"[extract_paired_devices] end",
    },
};
// clang-format on
