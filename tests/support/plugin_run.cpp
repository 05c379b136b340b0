// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/plugin_run.h"

using namespace Qt::StringLiterals;

QStringList result_columns()
{
    // clang-format off
    return {u"bookmark"_s, u"INT"_s, u"system_account"_s, u"uuid"_s, u"device_name"_s, u"address"_s,
            u"last_seen_time"_s, u"last_connection_time"_s, u"apple_tags"_s, u"icloud_identifier"_s,
            u"kaldo_tag_value"_s, u"notes_icon"_s, u"tags_icon"_s, u"os_scheme_display"_s, u"source_count_name"_s,
            u"source_file"_s, u"artifacts_relation_source_file"_s, u"notes"_s};
    // clang-format on
}

plugin_run::plugin_run()
    : tabs{u"devices"_s, u"paired_devices"_s}
{
    source.os_scheme_display = u"macOS 12.6"_s;
    source.os_scheme_internal = u"macOS"_s;
}

void plugin_run::prepare()
{
    frame.pub_set_essentials();
    frame.pub_set_general_info(log.general_info());
    frame.pub_set_examiner_machine_info({});
    frame.pub_set_desktop_info({});
    frame.pub_set_source_info(source);
    frame.pub_set_engine_type(engine_type);
    frame.pub_set_source_count(source_count);
    frame.pub_set_result_directory(result_directory());
    frame.pub_set_essential_for_kaldo_desk_extraction(tabs, {});
    frame.pub_create_db_tables();
}

void plugin_run::extract()
{
    frame.pub_find_source_file();
    frame.pub_extract_artifacts();
    frame.pub_remove_temporary_asthetics();
}

void plugin_run::run()
{
    prepare();
    log.take_lines();
    extract();
}

QString plugin_run::result_directory() const
{
    return directory.path() + u"/case"_s;
}

QString plugin_run::plugin_directory() const
{
    return result_directory() + u"/Artifacts_Result/Bluetooth_Logs/"_s;
}

QString plugin_run::db_path() const
{
    return plugin_directory() + u"Bluetooth_Logs.sqlite"_s;
}

sqlite_file plugin_run::database() const
{
    return sqlite_file(db_path());
}

QStringList plugin_run::take_messages()
{
    QStringList lines = log.take_messages();
    for (QString &line : lines) {
        line.replace(result_directory(), u"<case>"_s);
        if (!source.source_root_path.isEmpty())
            line.replace(source.source_root_path, u"<source>/"_s);
    }
    return lines;
}
