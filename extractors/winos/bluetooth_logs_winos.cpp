// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/winos/bluetooth_logs_winos.h"

bluetooth_logs_winos::bluetooth_logs_winos(QWidget *parent)
    : QWidget(parent)
    , elapsed_timer(std::make_unique<QElapsedTimer>())
{
}

bluetooth_logs_winos::~bluetooth_logs_winos() = default;

void bluetooth_logs_winos::winos_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    plugin_helper_obj = helper;
}

void bluetooth_logs_winos::winos_set_record_count(qint64 count)
{
    record_count = count;
}

void bluetooth_logs_winos::winos_set_tab_processed_count(int count)
{
    tab_processed_count = count;
}

void bluetooth_logs_winos::winos_set_examiner_machine_info(
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info)
{
    Q_UNUSED(info)
}

void bluetooth_logs_winos::winos_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info)
{
    Q_UNUSED(info)
}

void bluetooth_logs_winos::winos_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info)
{
    source_root_path = info.source_root_path;
    source_path_2 = info.source_path_2;
    for (const auto &account : std::as_const(info.system_account_list))
        system_account_text_list << account.system_user << account.system_account_home_path;
    system_account_text_list.removeDuplicates();
    system_account_text_list.removeAll(QString());
    os_scheme_display = info.os_scheme_display;
}

void bluetooth_logs_winos::winos_set_plugin_name(QString name)
{
    plugin_name = name.trimmed();
}

void bluetooth_logs_winos::winos_set_destination_location(QString result_directory, QString temporary_directory,
                                                          QString db_file)
{
    destination_result_dir_path = result_directory;
    destination_tmp_dir_path = temporary_directory;
    destination_db_file_path = db_file;
}

void bluetooth_logs_winos::winos_set_essential_for_kaldo_desk_extraction(QStringList tabs)
{
    selected_tab_list = tabs;
}

void bluetooth_logs_winos::winos_set_engine_type(int type)
{
    engine_type = type;
}

void bluetooth_logs_winos::winos_set_essentials()
{
    bool_cancel_extraction = false;
}

void bluetooth_logs_winos::winos_cancel_extraction()
{
    bool_cancel_extraction = true;
}

void bluetooth_logs_winos::winos_set_source_count(int count)
{
    source_count = count;
}

void bluetooth_logs_winos::winos_find_artifacts_source()
{
    find_source_file();
}

void bluetooth_logs_winos::winos_extract_artifacts()
{
    elapsed_timer->start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_winos(record_count);
}

void bluetooth_logs_winos::find_source_file()
{
}

void bluetooth_logs_winos::extract_plugin_artifacts()
{
}
