// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/macos/bluetooth_logs_macos.h"

#include "extractors/macos/device_tables.h"

using namespace Qt::StringLiterals;

bluetooth_logs_macos::bluetooth_logs_macos(QWidget *parent)
    : QWidget(parent)
    , elapsed_timer(std::make_unique<QElapsedTimer>())
{
}

bluetooth_logs_macos::~bluetooth_logs_macos() = default;

void bluetooth_logs_macos::macos_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    helper_obj = helper;
}

void bluetooth_logs_macos::macos_set_record_count(qint64 count)
{
    records_count = count;
}

void bluetooth_logs_macos::macos_set_tab_processed_count(int count)
{
    tabs_processed_count = count;
}

void bluetooth_logs_macos::macos_set_examiner_machine_info(
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info)
{
    Q_UNUSED(info)
}

void bluetooth_logs_macos::macos_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info)
{
    Q_UNUSED(info)
}

void bluetooth_logs_macos::macos_set_desktop_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info info)
{
    desktop_text_4 = info.desktop_text_4;
}

void bluetooth_logs_macos::macos_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info)
{
    source_root_path = info.source_root_path;
    source_text_8 = info.source_text_8;
    source_path_list_text = info.source_path_list.join(u";++::++;"_s);
    source_path_2 = info.source_path_2;
    for (const auto &account : std::as_const(info.system_account_list))
        system_user_list.append(account.system_user);
    system_user_list.removeDuplicates();
    system_user_list.removeAll(QString());
    os_scheme_display = info.os_scheme_display;
}

void bluetooth_logs_macos::macos_set_plugin_name(QString name)
{
    plugin_name = name.trimmed();
}

void bluetooth_logs_macos::macos_set_destination_location(QString result_directory, QString temporary_directory,
                                                          QString db_file)
{
    plugin_result_directory = result_directory;
    temp_directory = temporary_directory;
    destination_db_file = db_file;
}

void bluetooth_logs_macos::macos_set_extended_attributes_list(QList<QString> list)
{
    Q_UNUSED(list)
}

void bluetooth_logs_macos::macos_set_essential_for_kaldo_desk_extraction(QList<QString> tabs)
{
    selected_tabs_list = tabs;
}

void bluetooth_logs_macos::macos_set_engine_type(int type)
{
    engine_type = type;
}

void bluetooth_logs_macos::macos_set_essentials()
{
    bool_cancel_extraction = false;
}

void bluetooth_logs_macos::macos_cancel_extraction()
{
    bool_cancel_extraction = true;
}

void bluetooth_logs_macos::macos_set_source_count(int count)
{
    source_count = count;
}

void bluetooth_logs_macos::macos_find_artifacts_source()
{
    find_source_file();
}

void bluetooth_logs_macos::macos_extract_artifacts()
{
    elapsed_timer->start();
    extract_plugin_artifacts();
    Q_EMIT signal_extracted_records_of_plugin_macos(records_count);
}

void bluetooth_logs_macos::extract_plugin_artifacts()
{
    if (unsigned(engine_type) > 2)
        return;

    if (selected_tabs_list.contains(device_table::other.tab)) {
        copy_source_bluetooth_other_db();
        extract_connected_devices();
        finish_tab();
    }
    if (selected_tabs_list.contains(device_table::paired.tab)) {
        copy_source_bluetooth_paired_db();
        extract_paired_devices();
        finish_tab();
    }
}

void bluetooth_logs_macos::finish_tab()
{
    Q_EMIT signal_extracted_records_of_plugin_macos(records_count);
    ++tabs_processed_count;
    Q_EMIT signal_total_tabs_processed_macos(tabs_processed_count);
}
