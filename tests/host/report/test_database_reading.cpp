// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/database_reading.h"

#include "host/source/macos_databases.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** A working copy of a database, and the result that the plug-in made of it. */
class made_database
{
public:
    explicit made_database(const macos_database &kind)
        : database(kind)
        , evidence(folder.filePath(u"evidence.db"_s))
        , result(folder.filePath(u"result.db"_s))
        , copy{evidence.path(), u"its path"_s, kind}
    {
        evidence.execute(
            u"CREATE TABLE "_s + kind.device_table
            + u"(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, ResolvedAddress TEXT, LastSeenTime INT, "
              "LastConnectionTime INT, GATTServiceChangeConfig INT, Tags TEXT, iCloudIdentifier TEXT)"_s);
        evidence.execute(u"CREATE TABLE CustomProperties(Uuid TEXT, JSON TEXT)"_s);
        result.execute(u"CREATE TABLE "_s + kind.result_table
                       + u"(uuid, device_name, address, last_seen_time, last_connection_time, apple_tags, "
                         "icloud_identifier)"_s);
    }

    void add_evidence(const QString &values) const
    {
        evidence.execute(u"INSERT INTO "_s + database.device_table + u" VALUES("_s + values + u')');
    }
    void add_row(const QString &values) const
    {
        result.execute(u"INSERT INTO "_s + database.result_table + u" VALUES("_s + values + u')');
    }

    /** Of each row of the result what the evidence says, without what is null: "rowid 1, name a". */
    QStringList account(reading_depth depth = reading_depth::everything) const
    {
        const sqlite_database opened(result.path(), sqlite_database::access::read_only);
        sqlite_statement row(opened, "SELECT * FROM " + QByteArray(database.result_table.data()));
        const vendor_list vendors;
        const preferences_names names;
        database_reading reading(copy, row, vendors, names, depth);
        QStringList lines;
        while (row.next()) {
            reading.next(row);
            lines.append(account_of(reading.values()));
        }
        if (!reading.problem().isEmpty())
            lines.append(u"problem: "_s + reading.problem());
        return lines;
    }

    QTemporaryDir folder;
    const macos_database &database;
    sqlite_file evidence;
    sqlite_file result;
    database_copy copy;

private:
    static QString account_of(const host_values &values)
    {
        if (!values.place.rowid)
            return u"nothing"_s;
        QStringList texts{u"rowid "_s + QString::number(*values.place.rowid)};
        const std::pair<const char *, const cell *> cells[] = {
            {"resolved", &values.resolved_address},
            {"seen", &values.last_seen_time},
            {"connected", &values.last_connection_time},
            {"origin", &values.name_origin},
            {"gatt", &values.gatt_service_change_config},
            {"custom", &values.custom_properties},
            {"tags", &values.tags},
            {"icloud", &values.icloud_identifier},
            {"kind", &values.address_kind},
            {"name", &values.name},
            {"differs", &values.differs},
            {"left out", &values.left_out},
            {"wal", &values.wal},
            {"wal values", &values.wal_values},
        };
        for (const auto &[name, value] : cells) {
            if (!value->is_null())
                texts.append(QLatin1StringView(name) + u' ' + QString::fromUtf8(text_of(*value)));
        }
        return texts.join(u", "_s);
    }
};

} // namespace

/** What the host reads in a database beside a row of the result. */
class test_database_reading : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values();
    void differences_data();
    void differences();
    void rows_that_the_result_lacks();
    void rows_that_the_evidence_lacks();
    void what_the_log_makes_of_rows();
    void what_cannot_be_read();
    void more_custom_properties_than_are_read();
};

void test_database_reading::values()
{
    made_database made(other_devices_database);
    made.add_evidence(u"'U-1', 'a', 1, 'Random C0:00:00:00:00:01', 'Public B4:C2:6A:7F:D3:7A', 2, 3, 4, 't', 'ic'"_s);
    made.add_evidence(u"'U-2', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL"_s);
    made.evidence.execute(u"INSERT INTO CustomProperties VALUES('U-1', '{}'), ('U-3', 'x')"_s);
    made.add_row(u"'U-1', 'a', 'Random C0:00:00:00:00:01', '2', 3, '', ''"_s);
    made.add_row(u"'U-2', '', '', '', '', '', ''"_s);
    QCOMPARE(made.account(),
             QStringList(
                 {u"rowid 1, resolved Public B4:C2:6A:7F:D3:7A, seen 2, connected 3, origin 1, gatt 4, custom {}, "
                  "tags t, icloud ic, kind static, name a"_s,
                  u"rowid 2"_s}));
    QCOMPARE(made.account(reading_depth::counters), QStringList({u"rowid 1, seen 2, connected 3"_s, u"rowid 2"_s}));
}

void test_database_reading::differences_data()
{
    QTest::addColumn<bool>("is_paired");
    QTest::addColumn<QString>("evidence"); // name, address, seen, connected, tags, icloud
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("differs");
    QTest::addColumn<QString>("left_out");

    const QString same = u"'a', 'b', 1, 2, 't', 'i'"_s;
    // clang-format off
    QTest::newRow("nothing")             << true  << same << same << QString() << QString();
    QTest::newRow("every text")          << true  << same << u"'x', 'x', 'x', 'x', 'x', 'x'"_s << u"device_name, address, last_seen_time, last_connection_time, apple_tags, icloud_identifier"_s << QString();
    QTest::newRow("of other devices")    << false << same << u"'x', 'x', 'x', 'x', 'x', 'x'"_s << u"device_name, address, last_seen_time, last_connection_time"_s << QString();
    QTest::newRow("times as text")       << true  << same << u"'a', 'b', '1', '2', 't', 'i'"_s << QString() << QString();
    QTest::newRow("times left out")      << true  << same << u"'a', 'b', NULL, '', 't', 'i'"_s << QString() << u"last_seen_time, last_connection_time"_s;
    QTest::newRow("of other devices they are not") << false << same << u"'a', 'b', NULL, '', 't', 'i'"_s << u"last_seen_time, last_connection_time"_s << QString();
    QTest::newRow("text left out")       << true  << u"'a', 'b', 'now', 2, 't', 'i'"_s << u"'a', 'b', '', 2, 't', 'i'"_s << u"last_seen_time"_s << QString();
    QTest::newRow("number as a name")    << true  << u"7, 'b', 1, 2, 't', 'i'"_s << u"'', 'b', 1, 2, 't', 'i'"_s << u"device_name"_s << QString();
    QTest::newRow("other number")        << true  << same << u"'a', 'b', 2, 2, 't', 'i'"_s << u"last_seen_time"_s << QString();
    QTest::newRow("NULL or empty")       << true  << u"NULL, 'b', 1, 2, 't', 'i'"_s << u"'', 'b', 1, 2, 't', 'i'"_s << QString() << QString();
    // clang-format on
}

void test_database_reading::differences()
{
    QFETCH(const bool, is_paired);
    QFETCH(const QString, evidence);
    QFETCH(const QString, result);
    made_database made(is_paired ? paired_devices_database : other_devices_database);
    made.evidence.execute(u"DROP TABLE "_s + made.database.device_table);
    made.evidence.execute(u"CREATE TABLE "_s + made.database.device_table
                          + u"(Uuid, Name, Address, LastSeenTime, LastConnectionTime, Tags, iCloudIdentifier)"_s);
    made.add_evidence(u"'U-1', "_s + evidence);
    made.add_row(u"'U-1', "_s + result);
    const sqlite_database opened(made.result.path(), sqlite_database::access::read_only);
    sqlite_statement row(opened, "SELECT * FROM " + QByteArray(made.database.result_table.data()));
    const vendor_list vendors;
    const preferences_names names;
    database_reading reading(made.copy, row, vendors, names, reading_depth::everything);
    QVERIFY(row.next());
    reading.next(row);
    QTEST(QString::fromUtf8(text_of(reading.values().differs)), "differs");
    QTEST(QString::fromUtf8(text_of(reading.values().left_out)), "left_out");
}

/** So many as are known to be lost are passed over, to the one with the same UUID. */
void test_database_reading::rows_that_the_result_lacks()
{
    made_database made(other_devices_database);
    for (const QString &uuid : {u"U-1"_s, u"U-2"_s, u"U-3"_s, u"U-4"_s})
        made.add_evidence(u'\'' + uuid + u"', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL"_s);
    for (const QString &uuid : {u"U-1"_s, u"U-3"_s, u"U-4"_s})
        made.add_row(u'\'' + uuid + u"', '', '', '', '', '', ''"_s);
    QCOMPARE(made.account(), QStringList({u"rowid 1"_s, u"rowid 2, differs uuid"_s, u"rowid 3, differs uuid"_s}));
    made.copy.lost = 1;
    QCOMPARE(made.account(), QStringList({u"rowid 1"_s, u"rowid 3"_s, u"rowid 4"_s}));
    made.result.execute(u"DELETE FROM devices WHERE uuid = 'U-3'"_s);
    QCOMPARE(made.account(), QStringList({u"rowid 1"_s, u"rowid 3, differs uuid"_s}));
}

void test_database_reading::rows_that_the_evidence_lacks()
{
    made_database made(other_devices_database);
    made.add_evidence(u"'U-1', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL"_s);
    made.add_row(u"'U-1', '', '', '', '', '', ''"_s);
    made.add_row(u"'U-2', '', '', '', '', '', ''"_s);
    QCOMPARE(made.account(), QStringList({u"rowid 1"_s, u"nothing"_s}));
}

void test_database_reading::what_the_log_makes_of_rows()
{
    made_database made(other_devices_database);
    for (const QString &uuid : {u"U-1"_s, u"U-2"_s, u"U-3"_s}) {
        made.add_evidence(u'\'' + uuid + u"', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL"_s);
        made.add_row(u'\'' + uuid + u"', '', '', '', '', '', ''"_s);
    }
    made.copy.wal_changes = {{2, {"changed", R"({"Name":"b"})", {}}}, {3, {"deleted", {}, {}}}};
    QCOMPARE(made.account(), QStringList({u"rowid 1"_s, u"rowid 2"_s, u"rowid 3"_s}));
    made.copy.has_wal = true;
    QCOMPARE(made.account(),
             QStringList({u"rowid 1, wal unchanged"_s, u"rowid 2, wal changed, wal values {\"Name\":\"b\"}"_s,
                          u"rowid 3, wal deleted"_s}));
}

void test_database_reading::what_cannot_be_read()
{
    made_database made(other_devices_database);
    made.add_row(u"'U-1', '', '', '', '', '', ''"_s);
    made.evidence.execute(u"DROP TABLE CustomProperties"_s);
    QCOMPARE(made.account(), QStringList{u"nothing"_s});
    made.copy.problem = u"it was not read to its end"_s;
    QCOMPARE(made.account(), QStringList({u"nothing"_s, u"problem: it was not read to its end"_s}));
    made.copy.problem.clear();
    made.copy.file = made.folder.filePath(u"none.db"_s);
    QCOMPARE(made.account(), QStringList({u"nothing"_s, u"problem: its path: unable to open database file"_s}));
}

void test_database_reading::more_custom_properties_than_are_read()
{
    made_database made(other_devices_database);
    made.add_evidence(u"'U-1', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL"_s);
    made.add_row(u"'U-1', '', '', '', '', '', ''"_s);
    made.evidence.execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100001) "
                          "INSERT INTO CustomProperties SELECT 'U-' || i, '{}' FROM n"_s);
    QCOMPARE(made.account(),
             QStringList({u"rowid 1, custom {}"_s, u"problem: CustomProperties holds more rows than are read here"_s}));
}

BLUETOOTH_LOGS_TEST(test_database_reading, QCoreApplication)

#include "test_database_reading.moc"
