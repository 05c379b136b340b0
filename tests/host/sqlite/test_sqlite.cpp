// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sqlite/sqlite.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(cell)

class test_sqlite : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void table_is_told_from_what_is_none_data();
    void table_is_told_from_what_is_none();
    void stranger_runs_nothing_data();
    void stranger_runs_nothing();
    void main_file_alone_leaves_all_else();
    void content_is_read_in_memory_data();
    void content_is_read_in_memory();
    void links_and_odd_names();
    void values_come_as_they_are();
    void cells_go_as_they_are_data();
    void cells_go_as_they_are();
    void kinds_of_errors_data();
    void kinds_of_errors();
    void path_that_is_too_long();
    void bytes_are_no_text_of_the_database();
    void log_is_read_unless_the_main_file_stands_alone();
    void columns_are_found_by_name();
    void cells_come_as_they_are();
    void statement_runs_again();
    void words_of_errors_data();
    void words_of_errors();
    void functions_of_the_host();
    void place_of_sorting();
};

namespace {

sqlite_database database_of(const QTemporaryDir &folder, const QByteArray &statements)
{
    sqlite_database(folder.filePath(u"x.db"_s), sqlite_database::access::create).execute(statements.constData());
    sqlite_database database(folder.filePath(u"x.db"_s), sqlite_database::access::main_file_alone);
    database.distrust();
    return database;
}

} // namespace

void test_sqlite::table_is_told_from_what_is_none_data()
{
    QTest::addColumn<QByteArray>("statements");
    QTest::addColumn<bool>("is_table");

    const QByteArray schema = "; PRAGMA writable_schema=ON; ";
    // clang-format off
    QTest::newRow("table")            << QByteArray("CREATE TABLE t(a)")                                   << true;
    QTest::newRow("other letters")    << QByteArray("CREATE TABLE T(a)")                                   << true;
    QTest::newRow("without rowid")    << QByteArray("CREATE TABLE t(a PRIMARY KEY) WITHOUT ROWID")         << true;
    QTest::newRow("generated column") << QByteArray("CREATE TABLE t(a, b AS (json_array(a)))")             << true;
    QTest::newRow("check of JSON")    << QByteArray("CREATE TABLE t(a); CREATE TABLE u(j CHECK(json_valid(j)))") << true;
    QTest::newRow("with an index and a trigger") << QByteArray("CREATE TABLE t(a); CREATE INDEX i ON t(a); CREATE TRIGGER g AFTER INSERT ON t BEGIN SELECT 1; END") << true;
    QTest::newRow("nothing")          << QByteArray("CREATE TABLE u(a)")                                   << false;
    QTest::newRow("empty")            << QByteArray("VACUUM")                                              << false;
    QTest::newRow("view")             << QByteArray("CREATE VIEW t AS SELECT 1 AS a")                      << false;
    QTest::newRow("virtual table")    << QByteArray("CREATE VIRTUAL TABLE t USING fts5(a)")                << false;
    QTest::newRow("index of that name") << QByteArray("CREATE TABLE u(a); CREATE INDEX t ON u(a)")         << false;
    QTest::newRow("table without pages") << "CREATE TABLE t(a)" + schema + "UPDATE sqlite_master SET rootpage = 0" << false;
    // clang-format on
}

void test_sqlite::table_is_told_from_what_is_none()
{
    QFETCH(QByteArray, statements);
    QFETCH(bool, is_table);
    const QTemporaryDir folder;
    sqlite_database database = database_of(folder, statements);
    bool answer = false;
    try {
        answer = database.has_table("t"_L1);
    } catch (const sqlite_error &) {
        // a schema that SQLite refuses as a whole
    }
    QCOMPARE(answer, is_table);
}

void test_sqlite::stranger_runs_nothing_data()
{
    QTest::addColumn<QByteArray>("statement");

    // clang-format off
    QTest::newRow("view")         << QByteArray("SELECT * FROM v");
    QTest::newRow("virtual table") << QByteArray("SELECT * FROM f");
    QTest::newRow("function")     << QByteArray("SELECT randomblob(1)");
    QTest::newRow("extension")    << QByteArray("SELECT load_extension('x')");
    QTest::newRow("recursion")    << QByteArray("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) SELECT * FROM n");
    QTest::newRow("attachment")   << QByteArray("ATTACH '/tmp/x' AS x");
    QTest::newRow("change")       << QByteArray("INSERT INTO t VALUES(1)");
    QTest::newRow("setting")      << QByteArray("PRAGMA writable_schema=ON");
    // clang-format on
}

void test_sqlite::stranger_runs_nothing()
{
    QFETCH(QByteArray, statement);
    const QTemporaryDir folder;
    const sqlite_database database = database_of(
        folder, "CREATE TABLE t(a); CREATE VIEW v AS SELECT randomblob(1) AS a; CREATE VIRTUAL TABLE f USING fts5(a)");
    QVERIFY_THROWS_EXCEPTION(sqlite_error, sqlite_statement(database, statement).next());
}

void test_sqlite::main_file_alone_leaves_all_else()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"x.db"_s);
    sqlite_database writer(path, sqlite_database::access::create);
    writer.execute(
        "PRAGMA journal_mode=WAL; CREATE TABLE t(a); PRAGMA wal_checkpoint(TRUNCATE); INSERT INTO t VALUES(1)");
    QVERIFY(QFile::copy(path, folder.filePath(u"y.db"_s))
            && QFile::copy(path + u"-wal"_s, folder.filePath(u"y.db-wal"_s)));
    {
        const sqlite_database reader(folder.filePath(u"y.db"_s), sqlite_database::access::main_file_alone);
        sqlite_statement count(reader, "SELECT count(*) FROM t");
        QVERIFY(count.next());
        QCOMPARE(count.integer(0), 0);
    }
    QCOMPARE(QDir(folder.path()).entryList({u"y.db*"_s}), QStringList({u"y.db"_s, u"y.db-wal"_s}));
}

void test_sqlite::content_is_read_in_memory_data()
{
    QTest::addColumn<QByteArray>("mode");

    QTest::newRow("journal") << QByteArray("DELETE");
    QTest::newRow("write-ahead log") << QByteArray("WAL");
}

void test_sqlite::content_is_read_in_memory()
{
    QFETCH(QByteArray, mode);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"x.db"_s);
    {
        sqlite_database made(path, sqlite_database::access::create);
        sqlite_statement(made, "PRAGMA journal_mode=" + mode).next();
        made.execute("CREATE TABLE t(a); INSERT INTO t VALUES (7)");
    }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    sqlite_database database(file.readAll());
    QVERIFY(QFile::remove(path));
    database.distrust();
    QVERIFY(database.has_table("t"_L1));
    sqlite_statement statement(database, "SELECT a FROM t");
    QVERIFY(statement.next());
    QCOMPARE(statement.integer(0), 7);
    QVERIFY_THROWS_EXCEPTION(sqlite_error, database.execute("INSERT INTO t VALUES (8)"));
    QVERIFY_THROWS_EXCEPTION(sqlite_error, sqlite_database(QByteArray("no database")).has_table("t"_L1));
}

void test_sqlite::links_and_odd_names()
{
    const QTemporaryDir folder;
    const QString odd = folder.filePath(u"a b%20?mode=rwc&x=#ö.db"_s);
    sqlite_database(odd, sqlite_database::access::create).execute("CREATE TABLE t(a)");
    QVERIFY(QFile::exists(odd));
    QVERIFY(sqlite_database(odd, sqlite_database::access::read_only).has_table("t"_L1));
    QVERIFY(QFile::link(odd, folder.filePath(u"link.db"_s)));
    QVERIFY_THROWS_EXCEPTION(sqlite_error,
                             sqlite_database(folder.filePath(u"link.db"_s), sqlite_database::access::read_only));
    QVERIFY_THROWS_EXCEPTION(sqlite_error,
                             sqlite_database(folder.filePath(u"none.db"_s), sqlite_database::access::read_write));
    QVERIFY(!QFile::exists(folder.filePath(u"none.db"_s)));
}

void test_sqlite::values_come_as_they_are()
{
    const QTemporaryDir folder;
    const sqlite_database database(folder.filePath(u"x.db"_s), sqlite_database::access::create);
    sqlite_statement row(database, "SELECT NULL, 9223372036854775807, 0.5, 'a' || char(0) || 'b', x'ff00', "
                                   "CAST(x'61ff62' AS TEXT), ?, ?, ? AS name");
    row.bind(0, u"\uFEFFü"_s); // no byte order mark: a text of a row is no file
    row.bind(1, qint64(-1));
    row.bind_null(2);
    QVERIFY(row.next());
    using type = cell::type;
    const QList<type> types{type::null, type::integer, type::real,    type::text, type::blob,
                            type::text, type::text,    type::integer, type::null};
    QCOMPARE(row.column_count(), types.size());
    for (int column = 0; column < types.size(); ++column)
        QVERIFY2(row.column_type(column) == types.at(column), qPrintable(QString::number(column)));
    QCOMPARE(row.integer(1), 9223372036854775807);
    QCOMPARE(row.real(2), 0.5);
    QCOMPARE(row.bytes(3).toByteArray(), QByteArray("a\0b", 3));
    QCOMPARE(row.bytes(4).toByteArray(), QByteArray("\xff\0", 2));
    QCOMPARE(row.text(5), u"a\ufffdb"_s);
    QCOMPARE(row.text(6), u"\uFEFFü"_s);
    QCOMPARE(row.integer(7), -1);
    QCOMPARE(row.column_name(8), u"name"_s);
    QVERIFY(!row.next());
}

void test_sqlite::cells_go_as_they_are_data()
{
    QTest::addColumn<cell>("value");
    QTest::addColumn<QByteArray>("quoted");

    // clang-format off
    QTest::newRow("null")       << cell()                                          << QByteArray("NULL");
    QTest::newRow("integer")    << cell::of_integer(-9223372036854775807)          << QByteArray("-9223372036854775807");
    QTest::newRow("real")       << cell{cell::type::real, 0, 0.5, {}}              << QByteArray("0.5");
    QTest::newRow("text")       << cell::of_text("it's")                           << QByteArray("'it''s'");
    QTest::newRow("empty text") << cell::of_text({})                               << QByteArray("''");
    QTest::newRow("no UTF-8")   << cell::of_text("a\xff")                          << QByteArray("X'61FF'");
    QTest::newRow("blob")       << cell{cell::type::blob, 0, 0, "ab"}              << QByteArray("X'6162'");
    QTest::newRow("empty blob") << cell{cell::type::blob, 0, 0, {}}                << QByteArray("X''");
    // clang-format on
}

void test_sqlite::cells_go_as_they_are()
{
    QFETCH(const cell, value);
    const QTemporaryDir folder;
    const sqlite_database database(folder.filePath(u"x.db"_s), sqlite_database::access::create);
    sqlite_statement row(database, "SELECT quote(?)");
    row.bind(0, value);
    QVERIFY(row.next());
    QTEST(row.bytes(0).toByteArray(), "quoted");
}

void test_sqlite::kinds_of_errors_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("is_out_of_memory");
    QTest::addColumn<bool>("is_of_the_system");

    // clang-format off
    QTest::newRow("no memory")      << SQLITE_NOMEM      << true  << true;
    QTest::newRow("reading")        << SQLITE_IOERR_READ << false << true;
    QTest::newRow("full disk")      << SQLITE_FULL       << false << true;
    QTest::newRow("cannot open")    << SQLITE_CANTOPEN   << false << true;
    QTest::newRow("not permitted")  << SQLITE_PERM       << false << true;
    QTest::newRow("not writable")   << SQLITE_READONLY   << false << true;
    QTest::newRow("no memory to read") << SQLITE_IOERR_NOMEM << false << true;
    QTest::newRow("damaged")        << SQLITE_CORRUPT    << false << false;
    QTest::newRow("no database")    << SQLITE_NOTADB     << false << false;
    QTest::newRow("the program's own") << 0              << false << false;
    // clang-format on
}

void test_sqlite::kinds_of_errors()
{
    QFETCH(const int, code);
    const sqlite_error error(code, u"words"_s);
    QCOMPARE(error.message(), u"words"_s);
    QCOMPARE(error.result_code(), code);
    QTEST(error.is_out_of_memory(), "is_out_of_memory");
    QTEST(error.is_of_the_system(), "is_of_the_system");
}

void test_sqlite::path_that_is_too_long()
{
    const QTemporaryDir folder;
    const QString longest = folder.path() + u'/'
                            + u"./"_s.repeated((longest_sqlite_path - folder.path().size()) / 2 - 3);
    const QString path = longest + QString(longest_sqlite_path - longest.size() + 1, u'x');
    try {
        const sqlite_database longest_one(path.chopped(1), sqlite_database::access::create);
        const sqlite_database database(path, sqlite_database::access::create);
        QFAIL("it was opened");
    } catch (const sqlite_error &error) {
        QCOMPARE(error.message(),
                 QString(u"its path has "_s + QString::number(longest_sqlite_path + 1)
                         + u" bytes, and SQLite opens none of more than "_s + QString::number(longest_sqlite_path)));
        QVERIFY(error.is_of_the_system());
    }
}

/** SQLite would convert them where its texts are UTF-16. */
void test_sqlite::bytes_are_no_text_of_the_database()
{
    const QTemporaryDir folder;
    const sqlite_database database = database_of(folder, "PRAGMA encoding='UTF-16le'; CREATE TABLE t(a); "
                                                         "INSERT INTO t VALUES(x'4100ff42')");
    sqlite_statement statement(database, "SELECT a FROM t");
    QVERIFY(statement.next());
    QCOMPARE(statement.bytes(0).toByteArray(), QByteArray("A\0\xff"
                                                          "B",
                                                          4));
}

void test_sqlite::log_is_read_unless_the_main_file_stands_alone()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"x.db"_s);
    sqlite_database writer(path, sqlite_database::access::create);
    writer.execute(
        "PRAGMA journal_mode=WAL; CREATE TABLE t(a); PRAGMA wal_checkpoint(TRUNCATE); INSERT INTO t VALUES(1)");
    const auto rows = [&path](sqlite_database::access mode) {
        const sqlite_database database(path, mode);
        sqlite_statement count(database, "SELECT count(*) FROM t");
        return count.next() ? count.integer(0) : -1;
    };
    QCOMPARE(rows(sqlite_database::access::read_only), 1);
    QCOMPARE(rows(sqlite_database::access::read_write), 1);
    QCOMPARE(rows(sqlite_database::access::main_file_alone), 0);
}

void test_sqlite::columns_are_found_by_name()
{
    const QTemporaryDir folder;
    const sqlite_database database(folder.filePath(u"x.db"_s), sqlite_database::access::create);
    const sqlite_statement row(database, "SELECT 1 AS a, 2 AS Bc, 3 AS bC, 4 AS abc");
    QCOMPARE(row.column_named("a"_L1), 0);
    QCOMPARE(row.column_named("A"_L1), 0);
    QCOMPARE(row.column_named("BC"_L1), 1);
    QCOMPARE(row.column_named("abc"_L1), 3);
    QCOMPARE(row.column_named("ab"_L1), -1);
    QCOMPARE(row.column_named(""_L1), -1);
}

void test_sqlite::cells_come_as_they_are()
{
    const QTemporaryDir folder;
    const sqlite_database database(folder.filePath(u"x.db"_s), sqlite_database::access::create);
    sqlite_statement row(database, "SELECT NULL, -7, 0.25, 'a', x'00ff', '', ?");
    row.bind_bytes(0, QByteArrayView("b\0", 2));
    QVERIFY(row.next());
    QStringList texts;
    for (int column = 0; column < row.column_count(); ++column) {
        const cell value = row.value_of(column);
        texts.append(QString::number(int(value.kind)) + u' ' + QString::number(value.integer) + u' '
                     + QString::number(value.real) + u' ' + QString::fromLatin1(value.bytes.toByteArray().toHex()));
    }
    QCOMPARE(texts, QStringList({u"0 0 0 "_s, u"1 -7 0 "_s, u"2 0 0.25 "_s, u"3 0 0 61"_s, u"4 0 0 00ff"_s, u"3 0 0 "_s,
                                 u"4 0 0 6200"_s}));
}

void test_sqlite::statement_runs_again()
{
    const QTemporaryDir folder;
    const sqlite_database database(folder.filePath(u"x.db"_s), sqlite_database::access::create);
    sqlite_statement row(database, "SELECT ?");
    for (const qint64 number : {1, 2}) {
        row.bind(0, number);
        QVERIFY(row.next());
        QCOMPARE(row.integer(0), number);
        QVERIFY_THROWS_EXCEPTION(sqlite_error, row.bind(0, number)); // it has begun
        row.reset();
    }
}

void test_sqlite::words_of_errors_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("statement");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("not there")   << u"none.db"_s << QByteArray()                        << SQLITE_CANTOPEN << u"unable to open database file"_s;
    QTest::newRow("no database") << u"text"_s    << QByteArray("SELECT * FROM t")       << SQLITE_NOTADB   << u"file is not a database"_s;
    QTest::newRow("no table")    << u"x.db"_s    << QByteArray("SELECT * FROM u")       << SQLITE_ERROR    << u"no such table: u"_s;
    QTest::newRow("written")     << u"x.db"_s    << QByteArray("INSERT INTO t VALUES(1)") << SQLITE_READONLY << u"attempt to write a readonly database"_s;
    QTest::newRow("no number")   << u"x.db"_s    << QByteArray("SELECT abs(-9223372036854775808)") << SQLITE_ERROR << u"integer overflow"_s;
    // clang-format on
}

void test_sqlite::words_of_errors()
{
    QFETCH(const QString, file);
    QFETCH(const QByteArray, statement);
    const QTemporaryDir folder;
    sqlite_database(folder.filePath(u"x.db"_s), sqlite_database::access::create).execute("CREATE TABLE t(a)");
    QFile text(folder.filePath(u"text"_s));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(1000, 'x')) == 1000);
    text.close();
    try {
        const sqlite_database database(folder.filePath(file), sqlite_database::access::read_only);
        sqlite_statement(database, statement).next();
        QFAIL("it ran");
    } catch (const sqlite_error &error) {
        QTEST(error.message(), "message");
        QTEST(error.result_code(), "code");
    }
}

/** The one that a stranger's database may be asked with. */
void test_sqlite::functions_of_the_host()
{
    const QTemporaryDir folder;
    const sqlite_database database = database_of(folder, "CREATE TABLE t(a); INSERT INTO t VALUES(1), (2)");
    sqlite_statement count(database, "SELECT COUNT(*) FROM t");
    QVERIFY(count.next());
    QCOMPARE(count.integer(0), 2);
}

void test_sqlite::place_of_sorting()
{
    sort_in_folder(u"/a b/%s"_s);
    QCOMPARE(QByteArray(sqlite3_temp_directory), "/a b/%s");
    sqlite3_free(sqlite3_temp_directory);
    sqlite3_temp_directory = nullptr;
}

BLUETOOTH_LOGS_TEST(test_sqlite, QCoreApplication)

#include "test_sqlite.moc"
