// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"

using namespace Qt::StringLiterals;

QString plugin_static_function::debug_file_path;
int plugin_static_function::type_engine_int = -1;
int plugin_static_function::source_count_int = -1;
bool plugin_static_function::bool_cancel_extraction = false;
bool plugin_static_function::debug_mode_status_bool = false;
bool plugin_static_function::debug_print_in_file_bool = false;
bool plugin_static_function::debug_print_on_terminal_bool = false;
qint64 plugin_static_function::examiner_machine_timezone_offset_qint64 = 0;
QString plugin_static_function::examiner_machine_os_version_full;
qint64 plugin_static_function::examiner_selected_timezone_offset_qint64 = 0;
int plugin_static_function::examiner_selected_date_format_int = 0;
QString plugin_static_function::source_os_version_full;
QList<struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account> plugin_static_function::system_account_QList;
QStringList plugin_static_function::system_account_QStringList;
QString plugin_static_function::root_pwd;

plugin_static_function::plugin_static_function(QWidget *parent)
    : QWidget(parent)
{
}

plugin_static_function::~plugin_static_function() = default;

void plugin_static_function::set_engine_type(int type)
{
    type_engine_int = type;
}

void plugin_static_function::set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info)
{
    debug_file_path = info.debug_file_path;
    debug_mode_status_bool = info.debug_mode_status;
    debug_print_in_file_bool = info.debug_print_in_file;
    debug_print_on_terminal_bool = info.debug_print_on_terminal;
}

void plugin_static_function::set_examiner_machine_info(
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info)
{
    examiner_machine_timezone_offset_qint64 = info.timezone_offset;
    examiner_machine_os_version_full = info.os_version_full;
}

void plugin_static_function::set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info)
{
    system_account_QList = info.system_account_list;
    source_os_version_full = info.os_version_full;
}

void plugin_static_function::set_cancel_extraction(bool cancel)
{
    bool_cancel_extraction = cancel;
}

void plugin_static_function::set_source_count(int count)
{
    source_count_int = count;
}

QString plugin_static_function::get_source_count_name()
{
    return u"Source"_s + QString::number(source_count_int);
}

void plugin_static_function::set_essentials()
{
    debug_file_path.clear();
    type_engine_int = -1;
    bool_cancel_extraction = false;
    source_count_int = -1;
    system_account_QStringList.clear();
    examiner_machine_timezone_offset_qint64 = 0;
    examiner_selected_timezone_offset_qint64 = 0;
    examiner_selected_date_format_int = 0;
    debug_mode_status_bool = false;
    debug_print_in_file_bool = false;
    debug_print_on_terminal_bool = false;
    system_account_QList.clear();
}

void plugin_static_function::clear_variables_kaldo_and_artifact_common_source_info(
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info &info)
{
    info.source_root_path.clear();
    info.source_path_2.clear();
    info.source_text_7.clear();
    info.source_text_11.clear();
    info.source_text_8.clear();
    info.source_log_file_path.clear();
    info.source_path_list.clear();
    info.os_scheme_display.clear();
    info.os_scheme_internal.clear();
    info.system_account_list.clear();
    info.os_version_full.clear();
    // The last two texts stay: hosts carry them from one source to the next.
}

void plugin_static_function::clear_variables_kaldo_and_artifact_common_general_info(
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info &info)
{
    info.general_flag_1 = false;
    info.debug_mode_status = false;
    info.debug_print_on_terminal = false;
    info.debug_print_in_file = false;
    info.debug_file_path.clear();
    // general_flag_5 stays.
}

void plugin_static_function::clear_variables_kaldo_and_artifact_common_examiner_machine_info(
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info &info)
{
    info.os_version_full.clear();
    info.timezone_offset = 0;
}
