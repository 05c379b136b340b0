// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"

#include "extractors/ios_uid/log_tables.h"

bluetooth_logs_ios_uid::bluetooth_logs_ios_uid(QWidget *parent)
    : QWidget(parent)
    , elapsed_timer(std::make_unique<QElapsedTimer>())
{
}

bluetooth_logs_ios_uid::~bluetooth_logs_ios_uid() = default;

void bluetooth_logs_ios_uid::ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *pointer)
{
    ios_backup_pointer = pointer;
}

void bluetooth_logs_ios_uid::ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    plugin_helper_obj = helper;
}

void bluetooth_logs_ios_uid::ios_uid_set_record_count(qint64 count)
{
    record_count = count;
}

void bluetooth_logs_ios_uid::ios_uid_set_tab_processed_count(int count)
{
    tab_processed_count = count;
}

void bluetooth_logs_ios_uid::ios_uid_set_examiner_machine_info(
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info)
{
    Q_UNUSED(info)
}

void bluetooth_logs_ios_uid::ios_uid_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info)
{
    Q_UNUSED(info)
}

void bluetooth_logs_ios_uid::ios_uid_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info)
{
    source_log_file_path = info.source_log_file_path;
    source_root_path = info.source_root_path;
    source_path_2 = info.source_path_2;
    os_scheme_display = info.os_scheme_display;
}

void bluetooth_logs_ios_uid::ios_uid_set_plugin_name(QString name)
{
    plugin_name = name.trimmed();
}

void bluetooth_logs_ios_uid::ios_uid_set_destination_location(QString result_directory, QString temporary_directory,
                                                              QString db_file)
{
    destination_result_dir_path = result_directory;
    destination_tmp_dir_path = temporary_directory;
    destination_db_file_path = db_file;
}

void bluetooth_logs_ios_uid::ios_uid_set_essential_for_kaldo_desk_extraction(QStringList tabs)
{
    selected_tab_list = tabs;
}

void bluetooth_logs_ios_uid::ios_uid_set_engine_type(int type)
{
    engine_type = type;
}

void bluetooth_logs_ios_uid::ios_uid_set_essentials()
{
    bool_cancel_extraction = false;
}

void bluetooth_logs_ios_uid::ios_uid_cancel_extraction()
{
    bool_cancel_extraction = true;
}

void bluetooth_logs_ios_uid::ios_uid_set_source_count(int count)
{
    source_count = count;
}

void bluetooth_logs_ios_uid::ios_uid_find_artifacts_source()
{
    find_source_file();
}

void bluetooth_logs_ios_uid::ios_uid_extract_artifacts()
{
    elapsed_timer->start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_ios_uid(record_count);
}

void bluetooth_logs_ios_uid::find_source_file()
{
}

void bluetooth_logs_ios_uid::extract_plugin_artifacts()
{
    if (engine_type != 0)
        return;

    if (selected_tab_list.contains(log_table::available.tab)) {
        extract_available_devices();
        finish_tab();
    }
    if (selected_tab_list.contains(log_table::paired.tab)) {
        extract_paired_devices();
        finish_tab();
    }
}

void bluetooth_logs_ios_uid::finish_tab()
{
    Q_EMIT signal_extracted_records_of_plugin_ios_uid(record_count);
    ++tab_processed_count;
    Q_EMIT signal_total_tabs_processed_ios_uid(tab_processed_count);
}
