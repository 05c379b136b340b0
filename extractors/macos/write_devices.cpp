// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "common/result_rows.h"
#include "common/sqlite_connection.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/macos/device_tables.h"

#include <QSqlError>

using namespace Qt::StringLiterals;

void bluetooth_logs_macos::extract_connected_devices()
{
    extract_devices(device_table::other.writing, source_file_copied_connected_list, source_file_other_list,
                    source_other_db_file, [this] { return read_other_devices(); });
}

void bluetooth_logs_macos::extract_paired_devices()
{
    extract_devices(device_table::paired.writing, source_file_copied_paired_list, source_file_paired_list,
                    source_paired_db_file, [this] { return read_paired_devices(); });
}

void bluetooth_logs_macos::extract_devices(const writing_texts &texts, const QStringList &copies,
                                           const QStringList &found, QString &reader_input,
                                           const std::function<QList<QJsonObject>()> &read)
{
    texts.log(texts.start);
    if (copies.isEmpty()) {
        texts.log(texts.copied_list_empty);
        return;
    }

    for (qsizetype i = 0; i < copies.size(); ++i) {
        if (bool_cancel_extraction)
            return;
        reader_input = copies.at(i);

        QSqlDatabase database = open_result_database(texts.log.function_info().toString(), destination_db_file,
                                                     source_root_path);
        if (!database.isOpen()) {
            texts.log(texts.open_failed);
            texts.log(database.lastError().text());
            texts.log(destination_db_file);
            return;
        }
        database.transaction();
        const QList<QJsonObject> devices = read();
        // After a second extraction there are more copies than found files.
        write_devices(texts, devices, found.value(i), database);
        database.commit();
        database.close();
    }
    texts.log(texts.end);
}

void bluetooth_logs_macos::write_devices(const writing_texts &texts, const QList<QJsonObject> &devices,
                                         const QString &source_file, QSqlDatabase &database)
{
    const QString statement = texts.insert_statement.toString();
    QSqlQuery query(database);
    QStringList values; // keeps its room from row to row
    for (const QJsonObject &device : devices) {
        const auto text = [&device](QLatin1StringView member) { return device.value(member).toString(); };
        values.clear();
        values << u"0"_s << text("Uuid"_L1) << text("Name"_L1) << text("Address"_L1) << source_file;
        for (const QLatin1StringView member : texts.members)
            values.append(text(member));
        values << os_scheme_display << plugin_static_function::get_source_count_name();

        if (!insert_row_or_log(query, statement, values, {}, texts.log))
            continue;
        ++records_count;
        if (is_progress_due(*elapsed_timer)) {
            Q_EMIT signal_extracted_records_of_plugin_macos(records_count);
            elapsed_timer->restart();
        }
    }
}
