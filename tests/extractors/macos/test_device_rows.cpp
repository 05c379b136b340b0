// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/sqlite_connection.h"
#include "extractors/macos/device_rows.h"
#include "extractors/macos/device_tables.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(const reading_texts *)

namespace {

const reading_texts &other = device_table::other.reading;
const reading_texts &paired = device_table::paired.reading;

QString as_json(const QList<QJsonObject> &rows)
{
    QJsonArray array;
    for (const QJsonObject &row : rows)
        array.append(row);
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

} // namespace

/** Rows of a database that is open already; no extractor, no case. */
class test_device_rows : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void rows_of_a_query_data();
    void rows_of_a_query();
    void well_formed_schemas_data();
    void well_formed_schemas();
    void order_of_rows_data();
    void order_of_rows();
    void forged_schemas_data();
    void forged_schemas();
    void views_are_not_compiled();

private:
    QString path() const
    {
        return directory->filePath(u"devices.db"_s);
    }
    void execute(const QStringList &statements) const;
    device_rows select(const reading_texts &texts) const;

    std::unique_ptr<QTemporaryDir> directory;
};

void test_device_rows::init()
{
    strict_test::init();
    directory = std::make_unique<QTemporaryDir>();
}

void test_device_rows::execute(const QStringList &statements) const
{
    // All on one connection, since only that may write to the schema.
    QSqlDatabase database = open_sqlite_connection(u"test_device_rows"_s, path());
    for (const QString &statement : statements) {
        QSqlQuery query(database);
        QVERIFY2(query.exec(statement), qPrintable(statement));
    }
    database.close();
}

device_rows test_device_rows::select(const reading_texts &texts) const
{
    QSqlDatabase database = open_sqlite_connection(u"test_device_rows"_s, path());
    const device_rows rows = select_devices(database, texts);
    database.close();
    return rows;
}

void test_device_rows::rows_of_a_query_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<const reading_texts *>("texts");
    QTest::addColumn<QString>("rows");

    // clang-format off
    QTest::newRow("no row")                      << u"SELECT 1 AS a WHERE 0"_s                        << &other  << u"[]"_s;
    QTest::newRow("no names in a row of texts")  << u"SELECT 'x' AS b, '' AS a UNION ALL SELECT '', 'y'"_s << &other  << uR"([{"a":"","b":"x"},{"a":"y","b":""}])"_s;
    QTest::newRow("numbers as texts")            << u"SELECT 1 AS a, 1.5 AS b, NULL AS c, x'61' AS d"_s << &other  << uR"([{"a":"1","b":"1.5","c":"","d":"a"}])"_s;
    QTest::newRow("numbers as numbers")          << u"SELECT 1 AS a, 1.5 AS b, NULL AS c, x'61' AS d"_s << &paired << uR"([{"a":1,"b":1.5,"c":"","d":"a"}])"_s;
    QTest::newRow("the last of doubled columns") << u"SELECT 1 AS a, 2 AS b, 3 AS a"_s                 << &paired << uR"([{"a":3,"b":2}])"_s;
    QTest::newRow("names differ in case")        << u"SELECT 1 AS a, 2 AS A"_s                         << &paired << uR"([{"A":2,"a":1}])"_s;
    QTest::newRow("a name that is empty")        << u"SELECT 1 AS \"\""_s                              << &paired << uR"([{"":1}])"_s;
    // clang-format on
}

void test_device_rows::rows_of_a_query()
{
    QFETCH(QString, statement);
    QFETCH(const reading_texts *, texts);
    QSqlDatabase database = open_sqlite_connection(u"test_device_rows"_s, path());
    {
        QSqlQuery query(database);
        query.setForwardOnly(true);
        QVERIFY(query.exec(statement));
        QTEST(as_json(read_rows(query, texts->to_json)), "rows");
    }
    database.close();
}

void test_device_rows::well_formed_schemas_data()
{
    QTest::addColumn<QStringList>("statements");
    QTest::addColumn<QString>("rows");

    const QString row = uR"([{"Name":"n"}])"_s;
    const QStringList table{u"CREATE TABLE OtherDevices(Name TEXT)"_s, u"INSERT INTO OtherDevices(Name) VALUES('n')"_s};
    // clang-format off
    QTest::newRow("table")                  << table << row;
    QTest::newRow("table in another case")  << QStringList{u"create table otherdevices(Name)"_s, u"INSERT INTO otherdevices VALUES('n')"_s} << row;
    QTest::newRow("name in quotes")         << QStringList{u"CREATE TABLE \"OtherDevices\"(Name)"_s, u"INSERT INTO OtherDevices VALUES('n')"_s} << row;
    QTest::newRow("statement with comments")<< QStringList{u"create /* a */ table -- b\n if not exists main . OtherDevices(Name)"_s, u"INSERT INTO OtherDevices VALUES('n')"_s} << row;
    QTest::newRow("table of a query")       << QStringList{u"CREATE TABLE OtherDevices AS SELECT 'n' AS Name"_s} << row;
    QTest::newRow("renamed table")          << QStringList{u"CREATE TABLE Old(Name)"_s, u"INSERT INTO Old VALUES('n')"_s, u"ALTER TABLE Old RENAME TO OtherDevices"_s} << row;
    QTest::newRow("without row numbers")    << QStringList{u"CREATE TABLE OtherDevices(Name PRIMARY KEY) WITHOUT ROWID"_s, u"INSERT INTO OtherDevices VALUES('n')"_s} << row;
    QTest::newRow("strict table")           << QStringList{u"CREATE TABLE OtherDevices(Name TEXT) STRICT"_s, u"INSERT INTO OtherDevices VALUES('n')"_s} << row;
    QTest::newRow("UTF-16")                 << (QStringList{u"PRAGMA encoding='UTF-16le'"_s} + table) << row;
    QTest::newRow("trigger of that name")   << (table + QStringList{u"CREATE TRIGGER OtherDevices AFTER INSERT ON OtherDevices BEGIN SELECT 1; END"_s}) << row;
    QTest::newRow("view on the table")      << (table + QStringList{u"CREATE VIEW Named AS SELECT * FROM OtherDevices WHERE Name <> ''"_s}) << row;
    QTest::newRow("index")                  << (table + QStringList{u"CREATE INDEX i ON OtherDevices(Name)"_s}) << row;
    // Functions that SQLite does not count as harmless, as an operating system uses them.
    QTest::newRow("JSON in a check")        << (table + QStringList{u"CREATE TABLE CustomProperties(Uuid TEXT, JSON TEXT CHECK(json_valid(JSON)))"_s}) << row;
    QTest::newRow("JSON in its own check")  << QStringList{u"CREATE TABLE OtherDevices(Name TEXT, CHECK(json_valid(json_quote(Name))))"_s, table.last()} << row;
    QTest::newRow("JSON in an index")       << (table + QStringList{u"CREATE INDEX i ON OtherDevices(json_quote(Name))"_s}) << row;
    QTest::newRow("JSON in a partial index")<< (table + QStringList{u"CREATE INDEX i ON OtherDevices(Name) WHERE json_valid(Name)"_s}) << row;
    QTest::newRow("JSON in another's column") << (table + QStringList{u"CREATE TABLE Others(JSON, Name AS (json_extract(JSON, '$.name')))"_s}) << row;
    QTest::newRow("JSON in a computed column")<< QStringList{u"CREATE TABLE OtherDevices(Name TEXT, Quoted AS (json_quote(Name)))"_s, table.last()} << uR"([{"Name":"n","Quoted":"\"n\""}])"_s;
    QTest::newRow("JSON in a stored column")  << QStringList{u"CREATE TABLE OtherDevices(Name TEXT, Quoted AS (json_quote(Name)) STORED)"_s, table.last()} << uR"([{"Name":"n","Quoted":"\"n\""}])"_s;
    // clang-format on
}

void test_device_rows::well_formed_schemas()
{
    QFETCH(QStringList, statements);
    execute(statements);
    const device_rows rows = select(other);
    QCOMPARE(rows.warning.value_or(u"none"_s), u"none"_s);
    QVERIFY(rows.is_read);
    QTEST(as_json(rows.devices), "rows");
}

void test_device_rows::order_of_rows_data()
{
    QTest::addColumn<const reading_texts *>("texts");
    QTest::newRow("other") << &other;
    QTest::newRow("paired") << &paired;
}

/** Rows come as the table holds them; no column puts them in order. */
void test_device_rows::order_of_rows()
{
    QFETCH(const reading_texts *, texts);
    const QString table = texts->table_name.toString();
    execute({u"CREATE TABLE "_s + table + u"(Uuid TEXT, Name TEXT, Address TEXT, LastSeenTime TEXT)"_s,
             u"INSERT INTO "_s + table + u" VALUES('B','y','3','2'),('A','z','1','3'),('C','x','2','1')"_s});
    QStringList uuids;
    for (const QJsonObject &row : select(*texts).devices)
        uuids.append(row.value("Uuid"_L1).toString());
    QCOMPARE(uuids, QStringList({u"B"_s, u"A"_s, u"C"_s}));
}

void test_device_rows::forged_schemas_data()
{
    QTest::addColumn<QStringList>("statements"); // the schema, and how it is forged
    QTest::addColumn<QString>("warning");

    const QString view = u"CREATE VIEW OtherDevices AS SELECT 'n' AS Name"_s;
    const QString virtual_table = u"CREATE VIRTUAL TABLE OtherDevices USING fts5(Name)"_s;
    const QString table = u"CREATE TABLE OtherDevices(Name)"_s;
    const QString writable = u"PRAGMA writable_schema=ON"_s;
    const QString refused = u"OtherDevices is not an ordinary table"_s;
    const QString malformed = u"malformed database schema (OtherDevices) Unable to execute statement"_s;
    // clang-format off
    QTest::newRow("view")                      << QStringList{view} << refused;
    QTest::newRow("view in another case")      << QStringList{u"CREATE VIEW OTHERDEVICES AS SELECT 1"_s} << refused;
    QTest::newRow("view of what is missing")  << QStringList{u"CREATE VIEW OtherDevices AS SELECT * FROM missing"_s} << refused;
    QTest::newRow("virtual table")             << QStringList{virtual_table} << refused;
    QTest::newRow("view called a table")       << QStringList{view, writable, u"UPDATE sqlite_master SET type='table'"_s} << malformed;
    QTest::newRow("view called a trigger")     << QStringList{view, writable, u"UPDATE sqlite_master SET type='trigger'"_s} << malformed;
    QTest::newRow("view of another name")      << QStringList{view, writable, u"UPDATE sqlite_master SET name='Other'"_s} << u"malformed database schema (Other) Unable to execute statement"_s;
    QTest::newRow("kind is a BLOB")            << QStringList{view, writable, u"UPDATE sqlite_master SET type=CAST(type AS BLOB)"_s} << refused;
    QTest::newRow("name is a BLOB")            << QStringList{view, writable, u"UPDATE sqlite_master SET name=CAST(name AS BLOB)"_s} << refused;
    QTest::newRow("name with a NUL")           << QStringList{view, writable, u"UPDATE sqlite_master SET name=CAST(CAST(name AS BLOB) || x'0041' AS TEXT)"_s} << refused;
    QTest::newRow("BLOB with a NUL")           << QStringList{view, writable, u"UPDATE sqlite_master SET name=CAST(name || x'0041' AS BLOB)"_s} << refused;
    QTest::newRow("virtual with a root page")  << QStringList{virtual_table, writable, u"UPDATE sqlite_master SET rootpage=2 WHERE name='OtherDevices'"_s} << refused;
    QTest::newRow("virtual behind a comment")  << QStringList{virtual_table, writable, u"UPDATE sqlite_master SET rootpage=2, sql='CREATE /*TABLE */VIRTUAL TABLE OtherDevices USING fts5(Name)' WHERE name='OtherDevices'"_s} << refused;
    QTest::newRow("statement is a BLOB")       << QStringList{virtual_table, writable, u"UPDATE sqlite_master SET sql=CAST(sql AS BLOB) WHERE name='OtherDevices'"_s} << refused;
    QTest::newRow("view before a table")       << QStringList{view, u"CREATE TABLE t(Name)"_s, writable, u"UPDATE sqlite_master SET name='OtherDevices', tbl_name='OtherDevices', sql='CREATE TABLE IF NOT EXISTS OtherDevices(Name)' WHERE name='t'"_s} << refused;
    QTest::newRow("BLOB view before a table")  << QStringList{view, u"CREATE TABLE t(Name)"_s, writable, u"UPDATE sqlite_master SET name=CAST(name AS BLOB)"_s, u"UPDATE sqlite_master SET name='OtherDevices', tbl_name='OtherDevices', sql='CREATE TABLE IF NOT EXISTS OtherDevices(Name)' WHERE type='table'"_s} << refused;
    QTest::newRow("no root page")              << QStringList{table, writable, u"UPDATE sqlite_master SET rootpage=0"_s} << u"database disk image is malformed Unable to fetch row"_s;
    QTest::newRow("root page behind the end")  << QStringList{table, writable, u"UPDATE sqlite_master SET rootpage=99"_s} << u"malformed database schema (OtherDevices) - invalid rootpage Unable to execute statement"_s;
    QTest::newRow("no such table")             << QStringList{u"CREATE TABLE t(Name)"_s} << u"no such table: OtherDevices Unable to execute statement"_s;
    // clang-format on
}

void test_device_rows::forged_schemas()
{
    QFETCH(QStringList, statements);
    execute(statements);
    const device_rows rows = select(other);
    QTEST(rows.warning.value_or(u"none"_s), "warning");
    QVERIFY(!rows.is_read);
    QCOMPARE(as_json(rows.devices), u"[]"_s);
}

void test_device_rows::views_are_not_compiled()
{
    // Each view joins the one below with itself: to compile the last one takes a million times as long as the first.
    QStringList statements{u"BEGIN"_s, u"CREATE TABLE OtherDevices(Name)"_s, u"INSERT INTO OtherDevices VALUES('n')"_s,
                           u"CREATE VIEW v0 AS SELECT Name FROM OtherDevices"_s};
    for (int view = 1; view <= 20; ++view)
        statements += u"CREATE VIEW v%1 AS SELECT Name FROM v%2 UNION ALL SELECT Name FROM v%2"_s.arg(view).arg(view
                                                                                                                - 1);
    for (int table = 0; table < 2000; ++table)
        statements += u"CREATE TABLE t%1(a)"_s.arg(table);
    execute(statements + QStringList{u"COMMIT"_s});
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(as_json(select(other).devices), uR"([{"Name":"n"}])"_s);
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
}

BLUETOOTH_LOGS_TEST(test_device_rows, QCoreApplication)

#include "test_device_rows.moc"
