// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/extraction.h"

#include "host/interrupt.h"
#include "plugin/bluetooth_logs.h"

#include <QLocale>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace {

struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general_info(const extraction_settings &settings)
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info;
    info.debug_mode_status = true;
    info.debug_print_on_terminal = settings.log_on_terminal;
    info.debug_print_in_file = true;
    info.debug_file_path = settings.log_file;
    return info;
}

struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info machine_info(const extraction_settings &settings)
{
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info;
    info.timezone_offset = settings.timezone_offset;
    info.os_version_full = QSysInfo::prettyProductName();
    return info;
}

struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source_info(const extraction_settings &settings)
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = settings.evidence.root;
    info.os_scheme_display = settings.display_name;
    info.os_scheme_internal = settings.evidence.kind->name;
    info.source_log_file_path = settings.evidence.log_file;
    return info;
}

/** Everything from the reset to the tables' names. */
void set_up(bluetooth_logs &plugin, const extraction_settings &settings)
{
    plugin.pub_set_general_info(general_info(settings));
    plugin.pub_set_examiner_machine_info(machine_info(settings));
    plugin.pub_set_desktop_info({});
    plugin.pub_set_source_info(source_info(settings));
    plugin.pub_set_engine_type(settings.engine_type);
    plugin.pub_set_source_count(settings.source_number);
    plugin.pub_set_result_directory(settings.case_directory);
    plugin.pub_set_essential_for_kaldo_desk_extraction(settings.tables, {});
}

} // namespace

extraction_progress::extraction_progress(const console &console, qsizetype tables)
    : out(console)
    , table_count(tables)
{
}

void extraction_progress::show_records(qint64 count)
{
    records = count;
    show();
}

void extraction_progress::show_tables(int count)
{
    tables_done = count;
    show();
}

void extraction_progress::show() const
{
    const QLocale locale(QLocale::English);
    out.show_progress(u"Extracting: table "_s + QString::number(qMin<qsizetype>(tables_done + 1, table_count))
                      + u" of "_s + QString::number(table_count) + u", "_s + locale.toString(records) + u" rows"_s);
}

bool run_extraction(bluetooth_logs &plugin, const extraction_settings &settings, extraction_progress &progress,
                    const std::function<void()> &tables_created)
{
    // By their texts: the class's own symbols stay in the plug-in file.
    QObject::connect(&plugin, SIGNAL(signal_extracted_records_of_plugin_overall(qint64)), &progress,
                     SLOT(show_records(qint64)));
    QObject::connect(&plugin, SIGNAL(signal_tab_processed_of_plugin_overall(int)), &progress, SLOT(show_tables(int)));

    plugin.pub_set_essentials();
    const interrupt ctrl_c(&plugin); // after the reset, which would forget a cancellation
    set_up(plugin, settings);
    plugin.pub_create_db_tables();
    tables_created();
    plugin.pub_find_source_file();
    plugin.pub_extract_artifacts();
    plugin.pub_remove_temporary_asthetics();
    return ctrl_c.came();
}
