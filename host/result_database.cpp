// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/result_database.h"

#include "host/host_error.h"
#include "host/ledevices.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView connection_name("result database");

// What iOS rows hold and the result tables, made for macOS, have no room for.
constexpr QLatin1StringView ios_columns[] = {
    "ALTER TABLE devices ADD COLUMN model VARCHAR(100)"_L1,
    "ALTER TABLE devices ADD COLUMN sf_device_id VARCHAR(100)"_L1,
    "ALTER TABLE devices ADD COLUMN date VARCHAR(100)"_L1,
    "ALTER TABLE paired_devices ADD COLUMN device_address VARCHAR(100)"_L1,
    "ALTER TABLE paired_devices ADD COLUMN model VARCHAR(100)"_L1,
    "ALTER TABLE paired_devices ADD COLUMN status VARCHAR(500)"_L1,
    "ALTER TABLE paired_devices ADD COLUMN date VARCHAR(100)"_L1,
};

} // namespace

result_database::result_database(const QString &file, access mode)
    : path(file)
{
    if (!QFileInfo(file).isFile())
        throw host_error(exit_code::input, u"there is no result database "_s + file);
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection_name);
    database.setDatabaseName(file);
    if (mode == access::read_only)
        database.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
    if (database.open())
        return;

    const QString reason = database.lastError().text();
    database = QSqlDatabase();
    QSqlDatabase::removeDatabase(connection_name);
    throw host_error(exit_code::input, u"the result database "_s + file + u" cannot be opened: "_s + reason);
}

result_database::~result_database()
{
    QSqlDatabase::removeDatabase(connection_name);
}

QStringList result_database::tables() const
{
    QStringList names;
    for (const ledevices_database *database : ledevices_databases) {
        QSqlQuery query(connection());
        query.setForwardOnly(true);
        query.prepare(u"SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?"_s);
        query.addBindValue(QString(database->result_table));
        if (!query.exec())
            throw host_error(exit_code::input,
                             u"the result database "_s + path + u" cannot be read: "_s + query.lastError().text());
        if (query.next())
            names.append(database->result_table);
    }
    if (names.isEmpty())
        throw host_error(exit_code::input, u"the result database "_s + path + u" holds no result table"_s);
    return names;
}

qint64 result_database::row_count(const QString &table) const
{
    QSqlQuery query(connection());
    query.setForwardOnly(true);
    if (!query.exec(u"SELECT count(*) FROM "_s + table) || !query.next())
        throw host_error(exit_code::input, u"the table "_s + table + u" of "_s + path + u" cannot be read: "_s
                                               + query.lastError().text());
    return query.value(0).toLongLong();
}

void result_database::widen_for_ios()
{
    QSqlDatabase database = connection();
    for (const QLatin1StringView statement : ios_columns) {
        QSqlQuery query(database);
        if (!query.exec(statement))
            throw host_error(exit_code::internal_error,
                             u"the result tables cannot be widened: "_s + query.lastError().text());
    }
}

QSqlDatabase result_database::connection() const
{
    return QSqlDatabase::database(connection_name);
}
