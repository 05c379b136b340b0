// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/function_log.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "common/sqlite_connection.h"
#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/winos/bluetooth_logs_winos.h"
#include "plugin/bluetooth_logs.h"
#include "plugin/result_schema.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

void bluetooth_logs::set_destination_location(QString dir)
{
    constexpr function_log log(u"void bluetooth_logs::set_destination_location(QString)");
    log(u"[set_destination_location] starts");

    const QString file_name = pub_get_artifact_name().replace(u' ', u'_');
    plugin_result_directory = dir + (dir.endsWith(u'/') ? QLatin1StringView() : "/"_L1) + u"Artifacts_Result/"_s
                              + file_name + u'/';
    temp_directory = plugin_result_directory + u"tmp/"_s;
    destination_db_file = plugin_result_directory + file_name + u".sqlite"_s;

    // A link in the result folder must not lead us, or the helper's copies, into the evidence.
    const bool is_safe = is_safe_target(temp_directory, source_root_path);
    if (is_safe) {
        QDir().mkpath(plugin_result_directory);
        QDir().mkpath(temp_directory);
    }
    helper_obj->set_adhoc_parent_path(is_safe ? temp_directory : QString());
    macos_obj->macos_set_destination_location(plugin_result_directory, temp_directory, destination_db_file);
    ios_uid_obj->ios_uid_set_destination_location(plugin_result_directory, temp_directory, destination_db_file);
    winos_obj->winos_set_destination_location(plugin_result_directory, temp_directory, destination_db_file);

    log(u"[set_destination_location] ends");
}

void bluetooth_logs::create_destination_database()
{
    constexpr function_log log(u"void bluetooth_logs::create_destination_database()");
    log(u"[create_destination_database] starts");
    create_db_tables();
    log(u"[create_destination_database] ends");
}

void bluetooth_logs::create_db_tables()
{
    constexpr function_log log(u"void bluetooth_logs::create_db_tables()");
    log(u"[create_db_tables] starts");

    const QString function_info = log.function_info().toString();
    QSqlDatabase database = open_result_database(function_info, destination_db_file, source_root_path);
    if (!database.isOpen()) {
        log(u"[create_db_tables]Destination Db opening------FAILED-------"_s + destination_db_file);
        return;
    }

    database.transaction();
    for (const result_table &table : result_tables) {
        if (!plugin_static_function::execute_db_command_by_dbreference(table.create_statement.toString(), database,
                                                                       function_info))
            log(table.creation_failed);
    }
    database.commit();
    database.close();
    log(u"[create_db_tables] end");
}

void bluetooth_logs::clear_db_tables()
{
    constexpr function_log log(u"void bluetooth_logs::clear_db_tables()");
    // A database that a link leads into the evidence counts as missing.
    if (!QFile::exists(destination_db_file) || !is_safe_target(destination_db_file, source_root_path)) {
        log(u"[clear_db_tables]DB not exists and so returning...");
        return;
    }
    if (unsigned(engine_type) > 2)
        return;

    for (const QString &tab : std::as_const(selected_tabs_list)) {
        plugin_static_function::execute_db_command_by_dbpath(u"delete from '"_s + tab + u'\'', destination_db_file,
                                                             log.function_info().toString());
    }
}

void bluetooth_logs::remove_temporary_directory()
{
    if (is_safe_target(plugin_result_directory, source_root_path))
        plugin_static_function::remove_directory(temp_directory);
}
