// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef PLUGIN_RESULT_SCHEMA_H
#define PLUGIN_RESULT_SCHEMA_H

#include <QStringView>

/** A table of the result database: how it is created, and what the log says when that fails. */
struct result_table
{
    QStringView create_statement;
    QStringView creation_failed;
};

// The host reads these tables: columns, order and spelling of the statements are fixed, doubled blanks included.
// clang-format off
inline constexpr result_table result_tables[] = {
    {u"CREATE TABLE IF NOT EXISTS devices(bookmark INTEGER,INT INTEGER PRIMARY KEY,system_account varchar(500),uuid VARCHAR(100),device_name VARCHAR(100),address VARCHAR(100),last_seen_time INTEGER,last_connection_time INTEGER,apple_tags VARCHAR(100),icloud_identifier VARCHAR(100),kaldo_tag_value varchar(100),notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),os_scheme_display varchar(500),source_count_name varchar(500),source_file  VARCHAR(1024),artifacts_relation_source_file  VARCHAR(1024),notes VARCHAR(500))",
     u"table creation -----FAILED---- devices"},
    {u"CREATE TABLE IF NOT EXISTS paired_devices(bookmark INTEGER,INT INTEGER PRIMARY KEY,system_account varchar(500),uuid VARCHAR(100),device_name VARCHAR(100),address VARCHAR(100),last_seen_time INTEGER,last_connection_time INTEGER,apple_tags VARCHAR(100),icloud_identifier VARCHAR(100),kaldo_tag_value varchar(100),notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),os_scheme_display varchar(500),source_count_name varchar(500),source_file  VARCHAR(1024),artifacts_relation_source_file  VARCHAR(1024),notes VARCHAR(500))",
     u"table creation -----FAILED---- paired_devices"},
};
// clang-format on

#endif
