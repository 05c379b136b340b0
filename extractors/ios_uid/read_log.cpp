// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/plugin_static_function.h"
#include "common/result_rows.h"
#include "common/sqlite_connection.h"
#include "extractors/ios_uid/log_scan.h"
#include "extractors/ios_uid/log_steps.h"

#include <QSqlError>

using namespace Qt::StringLiterals;

void bluetooth_logs_ios_uid::extract_available_devices()
{
    extract_devices(log_step::available);
}

void bluetooth_logs_ios_uid::extract_paired_devices()
{
    extract_devices(log_step::paired);
}

void bluetooth_logs_ios_uid::extract_devices(const log_step &step)
{
    step.log(u" start"_s);
    QSqlDatabase database = open_result_database(step.function_info.toString(), destination_db_file_path,
                                                 source_root_path);
    if (!database.isOpen()) {
        step.log(step.open_failed + destination_db_file_path);
        step.log(database.lastError().text());
        return;
    }
    database.transaction();
    const bool is_read = read_log(step, database);
    database.commit();
    database.close();
    if (is_read)
        step.log(u" end"_s);
}

bool bluetooth_logs_ios_uid::read_log(const log_step &step, QSqlDatabase &database)
{
    QFile file(source_log_file_path);
    const auto log_error = [&step](const QString &error) { step.log(u" Error :- "_s + error); };
    if (const std::optional<QString> error = open_evidence_file(file)) {
        step.log(u" source file open ------FAILED-------"_s + source_log_file_path);
        log_error(*error);
        return false;
    }

    QSqlQuery query(database);
    const bool is_whole = scan_log(file, step.markers, bool_cancel_extraction, [&](const QByteArray &line) {
        write_device(step, parse_log_line(QString::fromUtf8(line), step.format), query);
    });
    if (file.error() == QFile::NoError)
        return is_whole;
    log_error(file.errorString());
    return false;
}

void bluetooth_logs_ios_uid::write_device(const log_step &step, const log_line_fields &fields, QSqlQuery &query)
{
    QStringList values{u"0"_s};
    for (const auto field : step.values)
        values.append(fields.*field);
    values << os_scheme_display << plugin_static_function::get_source_count_name();

    if (!insert_row_or_log(query, step.insert_statement.toString(), values, destination_db_file_path,
                           function_log(step.function_info)))
        return;
    ++record_count;
    if (is_progress_due(*elapsed_timer)) {
        Q_EMIT signal_extracted_records_of_plugin_ios_uid(record_count);
        elapsed_timer->restart();
    }
}
