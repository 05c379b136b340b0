// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/plugin_static_function.h"
#include "common/sqlite_connection.h"
#include "extractors/macos/device_tables.h"

#include <QSqlError>
#include <QSqlRecord>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/** The advice of SQLite's makers for files from strangers: https://www.sqlite.org/security.html */
constexpr QStringView untrusted_file_settings[] = {u"PRAGMA trusted_schema=OFF", u"PRAGMA cell_size_check=ON"};

/** What the parsed schema says of a table: "table" for an ordinary one, "view", "virtual", or nothing. */
QString kind_of_table(const QSqlDatabase &database, const QString &name)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    const bool found =
        execute_with_values(query,
                            u"SELECT type FROM pragma_table_list WHERE schema='main' AND name=? COLLATE NOCASE"_s,
                            {name});
    return found && query.next() ? query.value(0).toString() : QString();
}

bool is_empty_text(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<QString>() && value.toString().isEmpty();
}

/**
 * Every row as an object of its columns. One object gets the names once, with empty texts, which is what most columns
 * of most devices hold; a row is a copy of it with the other values put in.
 */
QList<QJsonObject> read_rows(QSqlQuery &query, QJsonValue (*to_json)(const QVariant &))
{
    QStringList names;
    QJsonObject without_values;
    const QSqlRecord columns = query.record();
    for (int column = 0; column < columns.count(); ++column) {
        names.append(columns.fieldName(column));
        without_values.insert(names.last(), QString());
    }
    QList<int> column_of_member;
    for (auto member = without_values.constBegin(); member != without_values.constEnd(); ++member)
        column_of_member.append(int(names.lastIndexOf(member.key())));

    QList<QJsonObject> rows;
    while (query.next()) {
        QJsonObject row = without_values;
        auto member = row.begin();
        for (const int column : std::as_const(column_of_member)) {
            const QVariant value = query.value(column);
            if (!is_empty_text(value))
                *member = to_json(value);
            ++member;
        }
        rows.append(std::move(row));
    }
    return rows;
}

/**
 * The rows of the table, or nothing when they cannot be queried. @p warning says why there are none, or that a damaged
 * page ended them early. The statement is not executed unless it reads an ordinary table: a view or a virtual table
 * would run what the evidence's author put into it.
 */
std::optional<QList<QJsonObject>> select_rows(const QSqlDatabase &database, const QString &table_name,
                                              const QString &statement, QJsonValue (*to_json)(const QVariant &),
                                              QString &warning)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    const bool prepared = query.prepare(statement);
    if (prepared && kind_of_table(database, table_name) != "table"_L1) {
        warning = table_name + u" is not an ordinary table"_s;
        return {};
    }
    if (!prepared || !query.exec()) {
        warning = query.lastError().text();
        return {};
    }
    QList<QJsonObject> rows = read_rows(query, to_json);
    if (query.lastError().isValid())
        warning = query.lastError().text();
    return rows;
}

} // namespace

QList<QJsonObject> bluetooth_logs_macos::read_other_devices()
{
    return read_devices(device_table::other);
}

QList<QJsonObject> bluetooth_logs_macos::read_paired_devices()
{
    return read_devices(device_table::paired);
}

QList<QJsonObject> bluetooth_logs_macos::read_devices(const device_table &table)
{
    const auto log = [&table](const QString &message) {
        plugin_static_function::app_debug(message, table.reading.function_info.toString());
    };

    log(table.reading.start.toString());
    log(table.reading.file + this->*table.reader_input);
    QSqlDatabase database = open_sqlite_connection(u"MY_DAMAGED_CONNECTION"_s, database_to_read(table));
    if (!database.isOpen()) {
        log(table.reading.open_failed.toString());
        log(database.lastError().text());
        if (table.reading.open_failed_detail)
            log(this->*table.reading.open_failed_detail);
        return {};
    }
    for (const QStringView setting : untrusted_file_settings)
        QSqlQuery(database).exec(setting.toString());

    database.transaction();
    QString warning;
    const std::optional<QList<QJsonObject>> devices = select_rows(database, table.reading.device_table_name.toString(),
                                                                  table.reading.select_statement.toString(),
                                                                  table.reading.to_json, warning);
    if (!warning.isNull())
        log(u" -- READ WARNING -- "_s + warning);
    if (!devices) {
        database.close();
        return {};
    }
    database.commit();
    database.close();
    log(table.reading.end.toString());
    return *devices;
}

/**
 * What the driver may open for the copy. A copy that leads back into the source counts as one that could not be made,
 * and that reads as an empty database.
 */
QString bluetooth_logs_macos::database_to_read(const device_table &table) const
{
    const QString &copy = this->*table.reader_input;
    const auto is_copy = [&copy](const QString &source) { return is_same_file(copy, source); };
    if (!is_safe_target(copy, source_root_path)
        || std::any_of(source_file_other_list.cbegin(), source_file_other_list.cend(), is_copy)
        || std::any_of(source_file_paired_list.cbegin(), source_file_paired_list.cend(), is_copy))
        return u":memory:"_s;
    return copy;
}
