// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "plugin/bluetooth_logs.h"

#include "common/function_log.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/winos/bluetooth_logs_winos.h"
#include "ui_bluetooth_logs.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView macos_scheme("macOS");
constexpr QLatin1StringView ios_uid_scheme("iOS_UID");
constexpr QLatin1StringView winos_scheme("winOS");
constexpr QLatin1StringView schemes[] = {macos_scheme, ios_uid_scheme, winos_scheme};

constexpr function_log log_find(u"virtual void bluetooth_logs::pub_find_source_file()");
constexpr function_log log_extract(u"virtual void bluetooth_logs::pub_extract_artifacts()");

} // namespace

bluetooth_logs::bluetooth_logs(QWidget *parent)
    : QFrame(parent)
    , ui(new Ui_bluetooth_logs)
{
    ui->setupUi(this);

    macos_obj = new bluetooth_logs_macos(this);
    connect(macos_obj, &bluetooth_logs_macos::signal_extracted_records_of_plugin_macos, this,
            &bluetooth_logs::slot_extracted_records_of_plugin);
    connect(macos_obj, &bluetooth_logs_macos::signal_total_tabs_processed_macos, this,
            &bluetooth_logs::slot_total_tabs_processed);

    ios_uid_obj = new bluetooth_logs_ios_uid(this);
    connect(ios_uid_obj, &bluetooth_logs_ios_uid::signal_extracted_records_of_plugin_ios_uid, this,
            &bluetooth_logs::slot_extracted_records_of_plugin);
    connect(ios_uid_obj, &bluetooth_logs_ios_uid::signal_total_tabs_processed_ios_uid, this,
            &bluetooth_logs::slot_total_tabs_processed);

    winos_obj = new bluetooth_logs_winos(this);
    connect(winos_obj, &bluetooth_logs_winos::signal_extracted_records_of_plugin_winos, this,
            &bluetooth_logs::slot_extracted_records_of_plugin);
    connect(winos_obj, &bluetooth_logs_winos::signal_total_tabs_processed_winos, this,
            &bluetooth_logs::slot_total_tabs_processed);

    helper_obj = new plugin_helper_functions(this);
}

bluetooth_logs::~bluetooth_logs()
{
    delete ui;
}

void bluetooth_logs::pub_set_engine_type(int type)
{
    engine_type = type;
    plugin_static_function::set_engine_type(type);
    macos_obj->macos_set_engine_type(type);
    ios_uid_obj->ios_uid_set_engine_type(type);
    winos_obj->winos_set_engine_type(type);

    const QString name = pub_get_artifact_name();
    macos_obj->macos_set_plugin_name(name);
    ios_uid_obj->ios_uid_set_plugin_name(name);
    winos_obj->winos_set_plugin_name(name);
}

QString bluetooth_logs::pub_get_artifact_name()
{
    return QObject::tr("Bluetooth Logs");
}

void bluetooth_logs::pub_set_essentials()
{
    bool_cancel_extraction = false;
    records_count = 0;
    tabs_processed_count = 0;
    plugin_static_function::set_essentials();
    helper_obj->set_essentials();
    macos_obj->macos_set_essentials();
    ios_uid_obj->ios_uid_set_essentials();
    winos_obj->winos_set_essentials();
}

void bluetooth_logs::pub_set_source_count(int count)
{
    macos_obj->macos_set_source_count(count);
    ios_uid_obj->ios_uid_set_source_count(count);
    winos_obj->winos_set_source_count(count);
    plugin_static_function::set_source_count(count);
}

void bluetooth_logs::pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *pointer)
{
    ios_uid_obj->ios_uid_set_ios_backup_pointer(pointer);
}

void bluetooth_logs::pub_set_desktop_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info info)
{
    macos_obj->macos_set_desktop_info(info);
}

void bluetooth_logs::pub_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info)
{
    plugin_static_function::set_general_info(info);
    macos_obj->macos_set_general_info(info);
    ios_uid_obj->ios_uid_set_general_info(info);
    winos_obj->winos_set_general_info(info);
}

void bluetooth_logs::pub_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info)
{
    os_scheme_internal = info.os_scheme_internal;
    source_root_path = info.source_root_path;
    plugin_static_function::set_source_info(info);
    macos_obj->macos_set_source_info(info);
    ios_uid_obj->ios_uid_set_source_info(info);
    winos_obj->winos_set_source_info(info);
}

void bluetooth_logs::pub_set_essential_for_kaldo_desk_extraction(QList<QString> tabs, QList<QString> unused)
{
    Q_UNUSED(unused)
    selected_tabs_list = tabs;
    macos_obj->macos_set_essential_for_kaldo_desk_extraction(tabs);
    ios_uid_obj->ios_uid_set_essential_for_kaldo_desk_extraction(tabs);
    winos_obj->winos_set_essential_for_kaldo_desk_extraction(tabs);
}

void bluetooth_logs::pub_set_result_directory(QString dir)
{
    set_destination_location(dir);
}

void bluetooth_logs::pub_create_db_tables()
{
    create_destination_database();
}

void bluetooth_logs::pub_set_clear_db(bool clear)
{
    if (clear)
        clear_db_tables();
}

void bluetooth_logs::pub_cancel_extraction()
{
    bool_cancel_extraction = true;
    macos_obj->macos_cancel_extraction();
    ios_uid_obj->ios_uid_cancel_extraction();
    winos_obj->winos_cancel_extraction();
    plugin_static_function::set_cancel_extraction(true);
    helper_obj->set_cancel_extraction(true);
}

void bluetooth_logs::pub_find_source_file()
{
    if (os_scheme_internal == macos_scheme) {
        macos_obj->macos_find_artifacts_source();
    } else if (os_scheme_internal == ios_uid_scheme) {
        ios_uid_obj->ios_uid_find_artifacts_source();
    } else if (os_scheme_internal == winos_scheme) {
        winos_obj->winos_find_artifacts_source();
    } else {
        // No blank before "=", unlike the message of the extraction: text is part of the log format.
        log_find(u"------FAILED------- supported os scheme internal not matched, received os scheme internal=  "_s
                 + os_scheme_internal + u", plugin name is "_s + pub_get_artifact_name());
    }
}

void bluetooth_logs::pub_set_extended_attributes_list(QList<QString> list)
{
    macos_obj->macos_set_extended_attributes_list(list);
}

void bluetooth_logs::pub_extract_artifacts()
{
    log_extract(u"[pub_extract_artifacts] - START");
    Q_EMIT signal_extracted_records_of_plugin_overall(0);

    macos_obj->macos_set_plugin_helper_obj(helper_obj);
    macos_obj->macos_set_record_count(records_count);
    macos_obj->macos_set_tab_processed_count(tabs_processed_count);
    ios_uid_obj->ios_uid_set_plugin_helper_obj(helper_obj);
    ios_uid_obj->ios_uid_set_record_count(records_count);
    ios_uid_obj->ios_uid_set_tab_processed_count(tabs_processed_count);
    winos_obj->winos_set_plugin_helper_obj(helper_obj);
    winos_obj->winos_set_record_count(records_count);
    winos_obj->winos_set_tab_processed_count(tabs_processed_count);

    const bool is_supported = std::ranges::find(schemes, os_scheme_internal) != std::end(schemes);
    if (bool_cancel_extraction && is_supported)
        return;

    if (os_scheme_internal == macos_scheme) {
        macos_obj->macos_extract_artifacts();
    } else if (os_scheme_internal == ios_uid_scheme) {
        ios_uid_obj->ios_uid_extract_artifacts();
    } else if (os_scheme_internal == winos_scheme) {
        winos_obj->winos_extract_artifacts();
    } else {
        log_extract(u"------FAILED------- supported os scheme internal not matched, received os scheme internal =  "_s
                    + os_scheme_internal + u", plugin name is "_s + pub_get_artifact_name());
    }

    Q_EMIT signal_extracted_records_of_plugin_overall(records_count);
    log_extract(u"[pub_extract_artifacts] - END");
}

void bluetooth_logs::pub_generate_chat_html_pages()
{
}

void bluetooth_logs::pub_remove_temporary_asthetics()
{
    remove_temporary_directory();
}

void bluetooth_logs::pub_set_examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info)
{
    plugin_static_function::set_examiner_machine_info(info);
    macos_obj->macos_set_examiner_machine_info(info);
    ios_uid_obj->ios_uid_set_examiner_machine_info(info);
    winos_obj->winos_set_examiner_machine_info(info);
}

void bluetooth_logs::slot_m_process_finished(int status)
{
    Q_UNUSED(status)
    bool_process_finished = true;
}

void bluetooth_logs::slot_extracted_records_of_plugin(qint64 records)
{
    records_count = records;
    Q_EMIT signal_extracted_records_of_plugin_overall(records);
}

void bluetooth_logs::slot_total_tabs_processed(int count)
{
    tabs_processed_count = count;
    Q_EMIT signal_tab_processed_of_plugin_overall(count);
}
