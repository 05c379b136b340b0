// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/sqlite_connection.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/macos/device_rows.h"
#include "extractors/macos/device_tables.h"

#include <QSqlError>

#include <algorithm>

using namespace Qt::StringLiterals;

QList<QJsonObject> bluetooth_logs_macos::read_other_devices()
{
    // Not the source's path: the log format has it so.
    return read_devices(device_table::other.reading, source_other_db_file, destination_db_file);
}

QList<QJsonObject> bluetooth_logs_macos::read_paired_devices()
{
    return read_devices(device_table::paired.reading, source_paired_db_file, {});
}

QList<QJsonObject> bluetooth_logs_macos::read_devices(const reading_texts &texts, const QString &copy,
                                                      const std::optional<QString> &open_failed_detail)
{
    const function_log &log = texts.log;
    log(texts.start);
    // A copy that leads back into the source counts as one that could not be made: it reads as an empty database.
    QSqlDatabase database = add_sqlite_connection(u"MY_DAMAGED_CONNECTION"_s,
                                                  leads_into_source(copy) ? u":memory:"_s : copy);
    log(texts.file + copy);
    if (!database.open()) {
        log(texts.open_failed);
        log(database.lastError().text());
        if (open_failed_detail)
            log(*open_failed_detail);
        return {};
    }
    // Finds damaged pages before their cells are used: https://www.sqlite.org/security.html
    QSqlQuery(database).exec(u"PRAGMA cell_size_check=ON"_s);

    database.transaction();
    const device_rows rows = select_devices(database, texts);
    if (rows.warning)
        log(u" -- READ WARNING -- "_s + *rows.warning);
    if (!rows.is_read) {
        database.close();
        return {};
    }
    database.commit();
    database.close();
    log(texts.end);
    return rows.devices;
}

bool bluetooth_logs_macos::leads_into_source(const QString &copy) const
{
    const auto is_copy = [&copy](const QString &source) { return is_same_file(copy, source); };
    return !is_safe_target(copy, source_root_path)
           || std::any_of(source_file_other_list.cbegin(), source_file_other_list.cend(), is_copy)
           || std::any_of(source_file_paired_list.cbegin(), source_file_paired_list.cend(), is_copy);
}
