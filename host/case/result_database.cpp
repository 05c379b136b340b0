// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/result_database.h"

#include "host/case/result_tables.h"
#include "host/files/host_error.h"

#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *ios_columns = R"(
    BEGIN;
    ALTER TABLE devices ADD COLUMN model VARCHAR(100);
    ALTER TABLE devices ADD COLUMN sf_device_id VARCHAR(100);
    ALTER TABLE devices ADD COLUMN date VARCHAR(100);
    ALTER TABLE paired_devices ADD COLUMN device_address VARCHAR(100);
    ALTER TABLE paired_devices ADD COLUMN model VARCHAR(100);
    ALTER TABLE paired_devices ADD COLUMN status VARCHAR(500);
    ALTER TABLE paired_devices ADD COLUMN date VARCHAR(100);
    COMMIT;
)";

[[noreturn]] void fail_to_read(const QString &what, const sqlite_error &error)
{
    throw host_error(error_kind::not_found, what + u" cannot be read: "_s + error.message());
}

sqlite_database open_to_read(const QString &file)
{
    if (!QFileInfo(file).isFile())
        throw host_error(error_kind::not_found, u"there is no result database "_s + file);
    try {
        sqlite_database database(file, sqlite_database::access::read_only);
        database.distrust(); // a case may come from anywhere
        database.execute("BEGIN");
        return database;
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::not_found,
                         u"the result database "_s + file + u" cannot be opened: "_s + error.message());
    }
}

} // namespace

result_database::result_database(const QString &file)
    : path(file)
    , database(open_to_read(file))
{
}

QStringList result_database::tables() const
{
    QStringList names;
    try {
        for (const macos_database *kind : macos_databases) {
            if (database.has_table(kind->result_table))
                names.append(kind->result_table);
        }
    } catch (const sqlite_error &error) {
        fail_to_read(u"the result database "_s + path, error);
    }
    if (names.isEmpty())
        throw host_error(error_kind::not_found, u"the result database "_s + path + u" holds no result table"_s);
    return names;
}

qint64 result_database::row_count(const QString &table) const
{
    try {
        sqlite_statement statement(database, "SELECT count(*) FROM " + table.toUtf8() + " NOT INDEXED");
        statement.next();
        return statement.integer(0);
    } catch (const sqlite_error &error) {
        fail_to_read(u"the table "_s + table + u" of "_s + path, error);
    }
}

sqlite_statement result_database::rows(const QString &table) const
{
    try {
        return sqlite_statement(database, "SELECT * FROM " + table.toUtf8() + " NOT INDEXED ORDER BY rowid");
    } catch (const sqlite_error &error) {
        fail_to_read(u"the table "_s + table + u" of "_s + path, error);
    }
}

void widen_result_tables_for_ios(const QString &file)
{
    try {
        sqlite_database database(file, sqlite_database::access::read_write);
        database.execute(ios_columns);
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, u"the result tables cannot be widened: "_s + error.message());
    }
}
