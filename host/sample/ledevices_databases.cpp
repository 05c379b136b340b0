// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/sample/device_names.h"
#include "host/sample/sample_parts.h"
#include "host/sample/sample_random.h"
#include "host/source/macos_databases.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView connection_name("sample database");
constexpr qint64 other_device_count = 1000;
constexpr qint64 paired_device_count = 20;
constexpr qsizetype long_name_size = 1 << 20;

// As the operating system lays them out: no key and nothing required.
constexpr QLatin1StringView
    device_columns("(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, ResolvedAddress TEXT, LastSeenTime INT, "
                   "LastConnectionTime INT, GATTServiceChangeConfig INT, Tags TEXT, iCloudIdentifier TEXT)");

constexpr QLatin1StringView common_statements[] = {
    "CREATE TABLE CustomProperties(Uuid TEXT, JSON TEXT, UNIQUE(Uuid))"_L1,
    "CREATE TABLE _SqliteDatabaseProperties(key TEXT, value TEXT, UNIQUE(key))"_L1,
    "INSERT INTO _SqliteDatabaseProperties VALUES('_ClientVersion', 2)"_L1,
};

void execute(QSqlQuery &query, const QString &statement)
{
    if (!query.exec(statement))
        throw host_error(error_kind::io,
                         u"the sample database cannot be written: "_s + statement + u": "_s + query.lastError().text());
}

void insert(const QSqlDatabase &database, const QString &table, const QVariantList &values)
{
    QSqlQuery query(database);
    // A name may be bytes, which stand in the database as a text then.
    query.prepare(u"INSERT INTO "_s + table + u" VALUES(?, CAST(? AS TEXT), ?, ?, ?, ?, ?, ?, ?, ?)"_s);
    for (const QVariant &value : values)
        query.addBindValue(value);
    if (!query.exec())
        throw host_error(error_kind::io, u"the sample database cannot be written: "_s + query.lastError().text());
}

/** Nearly all devices that were only seen have no name; the named ones are spread among them. */
QVariant other_name(qint64 row)
{
    constexpr qint64 spread = other_device_count / qint64(std::size(other_device_names));
    if (row % spread != spread / 2 || row / spread >= qint64(std::size(other_device_names)))
        return {};
    return other_device_names[row / spread].toString();
}

/** Names that many tools fail on. */
QByteArrayList hostile_names()
{
    return {QByteArray("<img src=x onerror=alert(1)>").repeated(long_name_size / 28), QByteArray("NUL \0 inside", 12),
            "lone surrogate \xED\xA0\x80 inside"};
}

void fill_other_devices(const QSqlDatabase &database, sample_names names)
{
    sample_random random(1);
    qint64 seen = 150; // the times are counters, not dates
    for (qint64 row = 0; row < other_device_count; ++row) {
        seen += 1 + random.below(800);
        const QVariant name = other_name(row);
        const QString kind = random.below(5) == 0 ? u"Public "_s : u"Random "_s;
        const QString address = kind + random.address(u':');
        const qint64 connected = random.below(20) == 0 ? seen / 180 : 0; // 0: never
        insert(database, other_devices_database.device_table,
               {random.uuid(), name, name.isNull() ? 0 : 1 + random.below(3), address, QVariant(), seen, connected, 0,
                QVariant(), u""_s});
    }
    if (names == sample_names::usual)
        return;
    for (const QByteArray &name : hostile_names()) {
        const QString address = u"Random "_s + random.address(u':');
        insert(database, other_devices_database.device_table,
               {random.uuid(), name, 1, address, QVariant(), ++seen, 0, 0, QVariant(), u""_s});
    }
}

void fill_paired_devices(const QSqlDatabase &database)
{
    sample_random random(2);
    qint64 connected = 3;
    for (qint64 row = 0; row < paired_device_count; ++row) {
        connected += 1 + random.below(90);
        const QVariant name = row < qint64(std::size(paired_device_names)) ? paired_device_names[row].toString()
                                                                           : QVariant();
        const QString address = u"Public "_s + random.address(u':');
        const QString random_address = u"Random "_s + random.address(u':');
        const bool is_resolved = row % 3 == 0;
        insert(database, paired_devices_database.device_table,
               {random.uuid(), name, 1, is_resolved ? random_address : address,
                is_resolved ? QVariant(address) : QVariant(), connected * 180 + random.below(180), connected, row % 2,
                row % 2 == 0 ? QVariant(u"Connected,HID"_s) : QVariant(), row % 5 == 0 ? random.uuid() : u""_s});
    }
}

/** One database in the write-ahead journal mode that the operating system uses; closing it moves all rows to the file.
 */
template<typename Fill>
void write_database(const QString &folder, const macos_database &kind, Fill fill)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, connection_name);
        database.setDatabaseName(folder + kind.file_name);
        if (!database.open())
            throw host_error(error_kind::io, u"the sample database cannot be made: "_s + database.lastError().text());
        {
            QSqlQuery query(database);
            execute(query, u"PRAGMA page_size=4096"_s);
            execute(query, u"PRAGMA journal_mode=WAL"_s);
            query.finish();
            database.transaction();
            execute(query, u"CREATE TABLE "_s + kind.device_table + device_columns);
            for (const QLatin1StringView statement : common_statements)
                execute(query, statement);
        }
        fill(database);
        database.commit();
        database.close();
    }
    QSqlDatabase::removeDatabase(connection_name);
}

} // namespace

void write_ledevices_databases(const QString &folder, sample_names names)
{
    write_database(folder, other_devices_database,
                   [names](const QSqlDatabase &database) { fill_other_devices(database, names); });
    write_database(folder, paired_devices_database, fill_paired_devices);
}
