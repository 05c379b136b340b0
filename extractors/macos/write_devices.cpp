// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "common/result_rows.h"
#include "common/sqlite_connection.h"
#include "extractors/macos/device_tables.h"

#include <QSqlError>

using namespace Qt::StringLiterals;

void bluetooth_logs_macos::extract_connected_devices()
{
    extract_devices(device_table::other);
}

void bluetooth_logs_macos::extract_paired_devices()
{
    extract_devices(device_table::paired);
}

void bluetooth_logs_macos::extract_devices(const device_table &table)
{
    const QString function_info = table.writing.function_info.toString();
    const auto log = [&function_info](const QString &message) {
        plugin_static_function::app_debug(message, function_info);
    };

    log(table.writing.start.toString());
    const QStringList &copies = this->*table.copied;
    if (copies.isEmpty()) {
        log(table.writing.copied_list_empty.toString());
        return;
    }

    for (qsizetype i = 0; i < copies.size(); ++i) {
        if (bool_cancel_extraction)
            return;
        this->*table.reader_input = copies.at(i);

        QSqlDatabase database = open_result_database(function_info, destination_db_file, source_root_path);
        if (!database.isOpen()) {
            log(table.writing.open_failed.toString());
            log(database.lastError().text());
            log(destination_db_file);
            return;
        }
        database.transaction();
        // After a second extraction there are more copies than found files.
        write_devices(table, read_devices(table), (this->*table.found).value(i), database);
        database.commit();
        database.close();
    }
    log(table.writing.end.toString());
}

void bluetooth_logs_macos::write_devices(const device_table &table, const QList<QJsonObject> &devices,
                                         const QString &source_file, QSqlDatabase &database)
{
    const QString function_info = table.writing.function_info.toString();
    const QString statement = table.writing.insert_statement.toString();
    QSqlQuery query(database);
    QStringList values; // keeps its room from row to row
    for (const QJsonObject &device : devices) {
        const auto text = [&device](QLatin1StringView member) { return device.value(member).toString(); };
        values.clear();
        values << u"0"_s << text("Uuid"_L1) << text("Name"_L1) << text("Address"_L1) << source_file;
        for (const QLatin1StringView member : table.writing.members)
            values.append(text(member));
        values << os_scheme_display << plugin_static_function::get_source_count_name();

        if (!insert_row_or_log(query, statement, values, {}, function_log(function_info)))
            continue;
        ++records_count;
        if (is_progress_due(*elapsed_timer)) {
            Q_EMIT signal_extracted_records_of_plugin_macos(records_count);
            elapsed_timer->restart();
        }
    }
}
