// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString caller = u"void some_plugin::some_step()"_s;
const QString reference_name = u"connection of the test"_s;

/** How a helper is called on a command, a connection and a path; a bool result is given as "true" or "false". */
using helper_call = QStringList (*)(const QString &command, const QStringList &values, QSqlDatabase &database,
                                    const QString &path);

struct helper
{
    const char *name;
    helper_call call;
    bool binds;
    bool by_path;
    bool is_list;
    const char *connection; ///< signature that its connection is named by; null without a lasting one
};

QStringList as_list(bool result)
{
    return {result ? u"true"_s : u"false"_s};
}

using library = plugin_static_function;

// clang-format off
const helper helpers[] = {
    {"execute_db_command_by_dbpath",
     [](const QString &command, const QStringList &, QSqlDatabase &, const QString &path) { return as_list(library::execute_db_command_by_dbpath(command, path, caller)); },
     false, true, false, "static bool plugin_static_function::execute_db_command_by_dbpath(QString, QString, QString)"},
    {"execute_db_command_with_addbindvalue_by_dbpath",
     [](const QString &command, const QStringList &values, QSqlDatabase &, const QString &path) { return as_list(library::execute_db_command_with_addbindvalue_by_dbpath(command, values, path, caller)); },
     true, true, false, "static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString, QStringList, QString, QString)"},
    {"execute_db_command_by_dbreference",
     [](const QString &command, const QStringList &, QSqlDatabase &database, const QString &) { return as_list(library::execute_db_command_by_dbreference(command, database, caller)); },
     false, false, false, nullptr},
    {"execute_db_command_with_addbindvalue_by_dbreference",
     [](const QString &command, const QStringList &values, QSqlDatabase &database, const QString &) { return as_list(library::execute_db_command_with_addbindvalue_by_dbreference(command, values, database, caller)); },
     true, false, false, nullptr},
    {"get_stringlist_from_db_by_dbpath",
     [](const QString &command, const QStringList &, QSqlDatabase &, const QString &path) { return library::get_stringlist_from_db_by_dbpath(command, 0, path, caller); },
     false, true, true, nullptr},
    {"get_stringlist_from_db_with_addbindvalues_by_dbpath",
     [](const QString &command, const QStringList &values, QSqlDatabase &, const QString &path) { return library::get_stringlist_from_db_with_addbindvalues_by_dbpath(command, values, 0, path, caller); },
     true, true, true, nullptr},
    {"get_stringlist_from_db_by_dbreference",
     [](const QString &command, const QStringList &, QSqlDatabase &database, const QString &) { return library::get_stringlist_from_db_by_dbreference(command, 0, database, caller); },
     false, false, true, nullptr},
    {"get_stringlist_from_db_with_addbindvalues_by_dbreference",
     [](const QString &command, const QStringList &values, QSqlDatabase &database, const QString &) { return library::get_stringlist_from_db_with_addbindvalues_by_dbreference(command, values, 0, database, caller); },
     true, false, true, nullptr},
};
// clang-format on

} // namespace

Q_DECLARE_METATYPE(const helper *)

class test_sql_commands : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup();
    void success_data();
    void success();
    void failed_statement_data();
    void failed_statement();
    void failed_opening_data();
    void failed_opening();
    void cancelled_while_binding_data();
    void cancelled_while_binding();
    void values_are_bound_as_texts_data();
    void values_are_bound_as_texts();
    void cancelled_in_rows_data();
    void cancelled_in_rows();
    void list_texts_are_trimmed_and_kept();
    void chosen_column_is_read();
    void missing_values_are_the_drivers_error();
    void existence_data();
    void existence();
    void existence_failure();
    void existence_cancelled();
    void table_names();
    void table_names_of_no_database();
    void repeated_calls_reuse_the_connection();

private:
    static void add_helpers(bool (*wanted)(const helper &));
    QString path(const QString &name) const
    {
        return directory->filePath(name);
    }

    debug_log_capture log;
    std::unique_ptr<QTemporaryDir> directory;
    QSqlDatabase database;
    QString file;
};

void test_sql_commands::init()
{
    strict_test::init();
    directory = std::make_unique<QTemporaryDir>();
    file = path(u"data.sqlite"_s);
    sqlite_file(file).execute(u"CREATE TABLE t(a TEXT, b TEXT)"_s);
    database = QSqlDatabase::addDatabase(u"QSQLITE"_s, reference_name);
    database.setDatabaseName(file);
    QVERIFY(database.open());
    log.start();
    log.take_lines();
}

void test_sql_commands::cleanup()
{
    library::bool_cancel_extraction = false;
    database = QSqlDatabase();
    const QStringList names = QSqlDatabase::connectionNames();
    for (const QString &name : names)
        QSqlDatabase::removeDatabase(name);
}

void test_sql_commands::add_helpers(bool (*wanted)(const helper &))
{
    QTest::addColumn<const helper *>("tested");
    for (const helper &candidate : helpers) {
        if (wanted(candidate))
            QTest::newRow(candidate.name) << &candidate;
    }
}

void test_sql_commands::success_data()
{
    add_helpers([](const helper &) { return true; });
}

void test_sql_commands::success()
{
    QFETCH(const helper *, tested);
    sqlite_file(file).execute(u"INSERT INTO t VALUES('one', 'two')"_s);
    const QStringList values = tested->binds ? QStringList{u"one"_s} : QStringList();
    const QString condition = tested->binds ? u" WHERE a = ?"_s : u""_s;
    const QString name = QString::fromLatin1(tested->name);

    const QString command = (tested->is_list ? u"SELECT b FROM t"_s : u"UPDATE t SET b = 'new'"_s) + condition;
    const QStringList result = tested->call(command, values, database, file);
    if (tested->is_list) {
        QCOMPARE(result, QStringList{u"two"_s});
        const QString end = name == u"get_stringlist_from_db_with_addbindvalues_by_dbpath"_s ? u" End "_s : u" end "_s;
        QCOMPARE(log.take_messages(), QStringList({u"plugin_static_function::"_s + name + u":  Start "_s,
                                                   u"plugin_static_function::"_s + name + u": "_s + end}));
    } else {
        QCOMPARE(result, QStringList{u"true"_s});
        QCOMPARE(log.take_messages(), QStringList());
        QCOMPARE(sqlite_file(file).quoted_rows(u"t"_s, {u"a"_s, u"b"_s}), QStringList{u"'one'|'new'"_s});
    }

    QStringList names{reference_name};
    if (tested->connection)
        names.append(QString::fromLatin1(tested->connection) + caller);
    QStringList left = QSqlDatabase::connectionNames();
    left.sort();
    names.sort();
    QCOMPARE(left, names);
    if (tested->connection)
        QVERIFY(!QSqlDatabase::database(QString::fromLatin1(tested->connection) + caller, false).isOpen());
    QVERIFY(database.isOpen());
}

void test_sql_commands::failed_statement_data()
{
    add_helpers([](const helper &) { return true; });
}

void test_sql_commands::failed_statement()
{
    QFETCH(const helper *, tested);
    const QString name = u"plugin_static_function::"_s + QString::fromLatin1(tested->name);
    const QString command = u"SELEKT 1"_s;
    QCOMPARE(tested->call(command, {}, database, file), tested->is_list ? QStringList() : QStringList{u"false"_s});

    // The texts of the four lines, in order, by helper: the odd blanks are part of the log format.
    // clang-format off
    const QHash<QString, QStringList> expected_texts = {
        {u"execute_db_command_by_dbpath"_s,                             {u" query  --------FAILED------ db file - "_s, u"CALLER FUNCTION -  "_s, u" command -  "_s, u" error -  "_s}},
        {u"execute_db_command_with_addbindvalue_by_dbpath"_s,           {u" query  --------FAILED------ db file - "_s, u" CALLER FUNCTION -  "_s, u" command -  "_s, u" error -  "_s}},
        {u"execute_db_command_by_dbreference"_s,                        {u" query  --------FAILED------ db file - "_s, u" CALLER FUNCTION -  -  "_s, u" command -  "_s, u" error -  "_s}},
        {u"execute_db_command_with_addbindvalue_by_dbreference"_s,      {u" query  --------FAILED------ db file - "_s, u" CALLER FUNCTION -  -  "_s, u" command -  "_s, u" error -  "_s}},
        {u"get_stringlist_from_db_by_dbpath"_s,                         {u"query  --------FAILED------db file - "_s, u"CALLER FUNCTION -  "_s, u"command -  "_s, u"error -  "_s}},
        {u"get_stringlist_from_db_with_addbindvalues_by_dbpath"_s,      {u"query  --------FAILED------db file - "_s, u"CALLER FUNCTION -  "_s, u"command -  "_s, u"error -  "_s}},
        {u"get_stringlist_from_db_by_dbreference"_s,                    {u" query  --------FAILED------db file - "_s, u" CALLER FUNCTION -  -  "_s, u" command -  "_s, u" error -  "_s}},
        {u"get_stringlist_from_db_with_addbindvalues_by_dbreference"_s, {u" query  --------FAILED------db file - "_s, u" CALLER FUNCTION -  -  "_s, u" command -  "_s, u" error -  "_s}},
    };
    // clang-format on
    const QStringList texts = expected_texts.value(QString::fromLatin1(tested->name));
    QStringList lines;
    if (tested->is_list)
        lines.append(name + u":  Start "_s);
    lines << name + u": "_s + texts.value(0) + file << name + u": "_s + texts.value(1) + caller
          << name + u": "_s + texts.value(2) + command
          << name + u": "_s + texts.value(3) + u"near \"SELEKT\": syntax error Unable to execute statement"_s;
    QCOMPARE(log.take_messages(), lines);

    if (tested->connection)
        QVERIFY(!QSqlDatabase::database(QString::fromLatin1(tested->connection) + caller, false).isOpen());
    QCOMPARE(QSqlDatabase::connectionNames().size(), tested->connection ? 2 : 1);
}

void test_sql_commands::failed_opening_data()
{
    add_helpers([](const helper &candidate) { return candidate.by_path; });
}

void test_sql_commands::failed_opening()
{
    QFETCH(const helper *, tested);
    const QString name = u"plugin_static_function::"_s + QString::fromLatin1(tested->name);
    const QString unopenable = directory->path(); // a directory
    QCOMPARE(tested->call(u"SELECT 1"_s, {}, database, unopenable),
             tested->is_list ? QStringList() : QStringList{u"false"_s});

    const QString error = u"unable to open database file Error opening database"_s;
    QCOMPARE(log.take_messages(),
             tested->is_list
                 ? QStringList({name + u":  Start "_s,
                                name + u": Destination Db opening --------FAILED------ "_s + unopenable,
                                name + u": CALLER FUNCTION -  "_s + caller, name + u": error -  "_s + error})
                 : QStringList({name + u":  Destination Db opening --------FAILED------ "_s + unopenable,
                                name + u": CALLER FUNCTION -  "_s + caller, name + u":  error -  "_s + error}));
    QCOMPARE(QSqlDatabase::connectionNames().size(), tested->connection ? 2 : 1);
}

void test_sql_commands::cancelled_while_binding_data()
{
    add_helpers([](const helper &candidate) { return candidate.binds; });
}

void test_sql_commands::cancelled_while_binding()
{
    QFETCH(const helper *, tested);
    const QString name = u"plugin_static_function::"_s + QString::fromLatin1(tested->name);
    library::bool_cancel_extraction = true;
    QCOMPARE(tested->call(u"INSERT INTO t(a) VALUES(?)"_s, {u"x"_s}, database, file),
             tested->is_list ? QStringList() : QStringList{u"false"_s});
    QCOMPARE(log.take_messages(), tested->is_list ? QStringList{name + u":  Start "_s} : QStringList());
    QCOMPARE(sqlite_file(file).rows(u"SELECT * FROM t"_s).size(), 0);

    // Executing by path leaves its connection open; reading a list by path leaves none.
    QCOMPARE(QSqlDatabase::connectionNames().size(), tested->connection ? 2 : 1);
    if (tested->connection)
        QVERIFY(QSqlDatabase::database(QString::fromLatin1(tested->connection) + caller, false).isOpen());

    // Without values the flag is not looked at before the statement runs.
    if (!tested->is_list)
        QCOMPARE(tested->call(u"INSERT INTO t(a) VALUES('y')"_s, {}, database, file), QStringList{u"true"_s});
}

void test_sql_commands::values_are_bound_as_texts_data()
{
    add_helpers([](const helper &candidate) { return candidate.binds; });
}

void test_sql_commands::values_are_bound_as_texts()
{
    QFETCH(const helper *, tested);
    sqlite_file(file).execute(u"CREATE TABLE untyped(number, null_text, empty)"_s);
    tested->call(u"INSERT INTO untyped VALUES(?, ?, ?)"_s, {u"007"_s, QString(), u""_s}, database, file);
    QCOMPARE(sqlite_file(file).quoted_rows(u"untyped"_s, {u"number"_s, u"null_text"_s, u"empty"_s}),
             QStringList{u"'007'|NULL|''"_s});
}

void test_sql_commands::cancelled_in_rows_data()
{
    add_helpers([](const helper &candidate) { return candidate.is_list; });
}

void test_sql_commands::cancelled_in_rows()
{
    QFETCH(const helper *, tested);
    const QString name = u"plugin_static_function::"_s + QString::fromLatin1(tested->name);
    sqlite_file(file).execute(u"INSERT INTO t VALUES('one', 'two')"_s);
    library::bool_cancel_extraction = true;
    QCOMPARE(tested->call(u"SELECT a FROM t"_s, {}, database, file), QStringList());
    QCOMPARE(log.take_messages(), QStringList{name + u":  Start "_s}); // no end marker
    QCOMPARE(QSqlDatabase::connectionNames().size(), tested->by_path ? 2 : 1);
    if (!tested->by_path)
        return;

    // Each call has a connection of its own, so that what the first left open stays open.
    tested->call(u"SELECT a FROM t"_s, {}, database, file);
    QStringList names = QSqlDatabase::connectionNames();
    names.removeOne(reference_name);
    QCOMPARE(names.size(), 2);
    for (const QString &left : std::as_const(names))
        QVERIFY(QSqlDatabase::database(left, false).isOpen());
}

void test_sql_commands::list_texts_are_trimmed_and_kept()
{
    sqlite_file(file).execute(u"INSERT INTO t VALUES(' a ', 1), ('', 2), (NULL, 3), ('   ', 4), ('b', 5)"_s);
    QCOMPARE(library::get_stringlist_from_db_by_dbpath(u"SELECT a FROM t ORDER BY b"_s, 0, file, caller),
             QStringList({u"a"_s, u""_s, u""_s, u""_s, u"b"_s}));
}

void test_sql_commands::chosen_column_is_read()
{
    sqlite_file(file).execute(u"INSERT INTO t VALUES('one', 'two')"_s);
    QCOMPARE(library::get_stringlist_from_db_by_dbreference(u"SELECT a, b FROM t"_s, 1, database, caller),
             QStringList{u"two"_s});
}

void test_sql_commands::missing_values_are_the_drivers_error()
{
    QVERIFY(!library::execute_db_command_with_addbindvalue_by_dbreference(u"INSERT INTO t(a, b) VALUES(?, ?)"_s,
                                                                          {u"one"_s}, database, caller));
    QCOMPARE(
        log.take_messages().value(3),
        u"plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference:  error -  Parameter count mismatch"_s);
}

void test_sql_commands::existence_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("found");

    // clang-format off
    QTest::newRow("as stored")        << u"x"_s    << true;
    QTest::newRow("blanks around")    << u" x "_s  << true;
    QTest::newRow("stored in blanks") << u"y"_s    << true;
    QTest::newRow("other case")       << u"X"_s    << false;
    QTest::newRow("a part")           << u"lon"_s  << false;
    QTest::newRow("longer")           << u"long!"_s << false;
    QTest::newRow("empty, as NULL")   << u""_s     << true;
    // clang-format on
}

void test_sql_commands::existence()
{
    QFETCH(QString, value);
    QFETCH(bool, found);
    sqlite_file(file).execute(u"INSERT INTO t(b) VALUES('x'), (' y '), ('long'), (NULL)"_s);
    QCOMPARE(library::check_value_existence_in_db_by_dbreference(u"SELECT a, b FROM t"_s, 1, value, database), found);
    QCOMPARE(library::check_value_existence_in_db_by_dbreference(u"SELECT b FROM t WHERE 0"_s, 0, value, database),
             false);
    QCOMPARE(log.take_messages(), QStringList());
}

void test_sql_commands::existence_failure()
{
    QVERIFY(!library::check_value_existence_in_db_by_dbreference(u"SELECT c FROM t"_s, 0, u"x"_s, database));
    const QString name = u"plugin_static_function::check_value_existence_in_db_by_dbreference: "_s;
    QCOMPARE(
        log.take_messages(),
        QStringList(
            {name + u"[check_value_existence_in_db_by_dbpath] query --------FAILED------"_s + reference_name,
             name + u"[check_value_existence_in_db_by_dbpath]commandSELECT c FROM t"_s,
             name + u"[check_value_existence_in_db_by_dbpath] errorno such column: c Unable to execute statement"_s}));
}

void test_sql_commands::existence_cancelled()
{
    sqlite_file(file).execute(u"INSERT INTO t(b) VALUES('x')"_s);
    library::bool_cancel_extraction = true;
    QVERIFY(!library::check_value_existence_in_db_by_dbreference(u"SELECT b FROM t"_s, 0, u"x"_s, database));
    QCOMPARE(log.take_messages(), QStringList());
}

void test_sql_commands::table_names()
{
    sqlite_file(file).execute(u"CREATE VIEW v AS SELECT 1"_s);
    sqlite_file(file).execute(u"CREATE TABLE u(a INTEGER PRIMARY KEY AUTOINCREMENT)"_s);
    sqlite_file(file).execute(u"ANALYZE"_s);
    QStringList names = library::get_total_tables_list_by_dbpath(file, caller);
    names.sort();
    QCOMPARE(names, QStringList({u"sqlite_sequence"_s, u"sqlite_stat1"_s, u"t"_s, u"u"_s}));
    const QString connection =
        u"static QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString, QString)"_s + caller;
    QVERIFY(QSqlDatabase::contains(connection));
    QVERIFY(!QSqlDatabase::database(connection, false).isOpen());
}

void test_sql_commands::table_names_of_no_database()
{
    const QString name = u"plugin_static_function::get_total_tables_list_by_dbpath: "_s;
    QCOMPARE(library::get_total_tables_list_by_dbpath(directory->path(), caller), QStringList());
    QCOMPARE(log.take_messages(),
             QStringList({name + u" Destination Db opening --------FAILED------ "_s + directory->path(),
                          name + u"CALLER FUNCTION -  "_s + caller,
                          name + u" error -  unable to open database file Error opening database"_s}));
}

void test_sql_commands::repeated_calls_reuse_the_connection()
{
    for (int call = 0; call < 3; ++call)
        QVERIFY(library::execute_db_command_by_dbpath(u"INSERT INTO t(a) VALUES('x')"_s, file, caller));
    QCOMPARE(QSqlDatabase::connectionNames().size(), 2);
    QVERIFY(library::execute_db_command_by_dbpath(u"DELETE FROM t"_s, file, u"void other::caller()"_s));
    QCOMPARE(QSqlDatabase::connectionNames().size(), 3);
}

BLUETOOTH_LOGS_TEST(test_sql_commands, QCoreApplication)

#include "test_sql_commands.moc"
