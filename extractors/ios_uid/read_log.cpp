// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/plugin_static_function.h"
#include "common/result_rows.h"
#include "common/sqlite_connection.h"
#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"
#include "extractors/ios_uid/log_scan.h"
#include "extractors/ios_uid/log_tables.h"

#include <QSqlError>

using namespace Qt::StringLiterals;

void bluetooth_logs_ios_uid::extract_available_devices()
{
    extract_devices(log_table::available);
}

void bluetooth_logs_ios_uid::extract_paired_devices()
{
    extract_devices(log_table::paired);
}

void bluetooth_logs_ios_uid::extract_devices(const log_table &table)
{
    table.log(u" start");
    QSqlDatabase database = open_result_database(table.log.function_info().toString(), destination_db_file_path,
                                                 source_root_path);
    if (!database.isOpen()) {
        table.log(table.open_failed + destination_db_file_path);
        table.log(database.lastError().text());
        return;
    }
    database.transaction();
    const bool is_read = read_log(table, database);
    database.commit();
    database.close();
    if (is_read)
        table.log(u" end");
}

bool bluetooth_logs_ios_uid::read_log(const log_table &table, QSqlDatabase &database)
{
    QFile file(source_log_file_path);
    const auto log_error = [&table](const QString &error) { table.log(u" Error :- "_s + error); };
    if (const std::optional<QString> error = open_evidence_file(file)) {
        table.log(u" source file open ------FAILED-------"_s + source_log_file_path);
        log_error(*error);
        return false;
    }

    QSqlQuery query(database);
    const bool is_whole = scan_log(file, table.format.markers, bool_cancel_extraction, [&](const QByteArray &line) {
        write_device(table, parse_log_line(QString::fromUtf8(line), table.format), query);
    });
    if (file.error() == QFile::NoError)
        return is_whole;
    log_error(file.errorString());
    return false;
}

void bluetooth_logs_ios_uid::write_device(const log_table &table, const log_line_fields &fields, QSqlQuery &query)
{
    const QStringList values = QStringList{u"0"_s} + table.values(fields)
                               + QStringList{os_scheme_display, plugin_static_function::get_source_count_name()};
    if (!insert_row_or_log(query, table.insert_statement.toString(), values, destination_db_file_path, table.log))
        return;
    ++record_count;
    if (is_progress_due(*elapsed_timer)) {
        Q_EMIT signal_extracted_records_of_plugin_ios_uid(record_count);
        elapsed_timer->restart();
    }
}
