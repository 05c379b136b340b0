// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/extraction.h"

#include "host/case/result_database.h"
#include "host/files/sha256.h"
#include "host/run/plugin_log.h"
#include "host/worker/cancellation.h"
#include "host/worker/sqlite_memory.h"
#include "plugin/bluetooth_logs.h"

#include <QFileInfo>
#include <QSysInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general_info(const source_request &request)
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info;
    info.debug_mode_status = true;
    info.debug_print_on_terminal = true; // the lines come here too, to be compared with the file
    info.debug_print_in_file = true;
    info.debug_file_path = request.layout().plugin_log();
    return info;
}

struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info machine_info(const source_request &request)
{
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info;
    info.timezone_offset = request.options.timezone_offset;
    info.os_version_full = QSysInfo::prettyProductName();
    return info;
}

struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source_info(const source_request &request)
{
    const QString &given_name = request.options.display_name;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = request.source.root;
    info.os_scheme_display = given_name.isEmpty() ? QString(request.source.recorded_kind()->display_name) : given_name;
    info.os_scheme_internal = request.source.kind->name;
    info.source_log_file_path = request.source.log_file;
    return info;
}

/** Everything from the records to the tables' names. */
void set_up(bluetooth_logs &plugin, const source_request &request)
{
    plugin.pub_set_general_info(general_info(request));
    plugin.pub_set_examiner_machine_info(machine_info(request));
    plugin.pub_set_desktop_info({});
    plugin.pub_set_source_info(source_info(request));
    plugin.pub_set_engine_type(request.options.engine_type);
    plugin.pub_set_source_count(request.number);
    plugin.pub_set_result_directory(request.layout().folder());
    plugin.pub_set_essential_for_kaldo_desk_extraction(request.options.tables, {});
}

/** The plug-in's log as it comes out of the plug-in, while an object of this class lives. */
class log_capture
{
public:
    explicit log_capture(bool is_verbose)
    {
        current = this;
        is_shown = is_verbose;
        usual_handler = qInstallMessageHandler(take_message);
    }
    ~log_capture()
    {
        qInstallMessageHandler(usual_handler);
        current = nullptr;
    }
    log_capture(const log_capture &) = delete;
    log_capture &operator=(const log_capture &) = delete;

    plugin_log_end end()
    {
        return {hash.result(), is_last_log_line(last_line)};
    }

private:
    static void take_message(QtMsgType type, const QMessageLogContext &, const QString &message)
    {
        const bool is_log = type == QtDebugMsg && is_log_line(message);
        const QByteArray line = message.toLocal8Bit() + '\n';
        if (is_log) {
            current->hash.add(line);
            current->last_line = message;
        }
        if (!is_log || current->is_shown)
            std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    }

    static inline log_capture *current = nullptr;

    sha256 hash;
    QString last_line;
    bool is_shown = false;
    QtMessageHandler usual_handler = nullptr;
};

} // namespace

extraction_observer::extraction_observer(const QStringList &table_names, line_sender line_function)
    : tables(table_names)
    , send(line_function)
{
}

void extraction_observer::take_records(qint64 count)
{
    records = count;
    send(records_line(count));
}

void extraction_observer::take_tables(int count)
{
    // Behind the last record of the table.
    send(table_done_line(tables.value(count - 1), records - records_before_table));
    records_before_table = records;
}

plugin_log_end run_extraction(bluetooth_logs &plugin, const source_request &request, extraction_observer &observer,
                              void (*without_memory)())
{
    // By their texts: the class's own symbols stay in the plug-in file.
    QObject::connect(&plugin, SIGNAL(signal_extracted_records_of_plugin_overall(qint64)), &observer,
                     SLOT(take_records(qint64)));
    QObject::connect(&plugin, SIGNAL(signal_tab_processed_of_plugin_overall(int)), &observer, SLOT(take_tables(int)));

    log_capture log(request.options.is_verbose);
    const sqlite_memory_watch watch(without_memory);
    plugin.pub_set_essentials();
    const cancellation on_signal(&plugin); // after the reset, which would forget a cancellation
    set_up(plugin, request);
    plugin.pub_create_db_tables();
    const QString result = request.layout().result_database();
    if (request.source.kind == &ios_uid_kind && !request.options.suite_tables && QFileInfo::exists(result))
        widen_result_tables_for_ios(result);
    plugin.pub_find_source_file();
    plugin.pub_extract_artifacts();
    plugin.pub_remove_temporary_asthetics();
    return log.end();
}
