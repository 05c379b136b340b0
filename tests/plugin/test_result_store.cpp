// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/file_content.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QSqlDatabase>
#include <QTest>

using namespace Qt::StringLiterals;

class test_result_store : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void paths_data();
    void paths();
    void transcript_of_the_set_up();
    void schema_data();
    void schema();
    void tables_are_made_in_one_transaction();
    void existing_rows_stay();
    void unopenable_database();
    void failed_table_creation_data();
    void failed_table_creation();
    void clearing();
    void clearing_that_is_not_wanted();
    void clearing_of_odd_names();
    void clearing_without_a_database();
    void clearing_that_is_gated_data();
    void clearing_that_is_gated();
    void unknown_column_adds_no_row();
    void temporary_folder_is_removed();
    void temporary_folder_before_any_result_directory();

private:
    std::unique_ptr<plugin_run> run;
};

void test_result_store::init()
{
    strict_test::init();
    run = std::make_unique<plugin_run>();
}

void test_result_store::paths_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("without slash") << u""_s;
    QTest::newRow("with slash") << u"/"_s;
}

void test_result_store::paths()
{
    QFETCH(QString, end);
    const QString dir = run->result_directory();
    run->frame.pub_set_result_directory(dir + end);
    QCOMPARE(run->frame.plugin_result_directory, dir + u"/Artifacts_Result/Bluetooth_Logs/"_s);
    QCOMPARE(run->frame.temp_directory, dir + u"/Artifacts_Result/Bluetooth_Logs/tmp/"_s);
    QCOMPARE(run->frame.destination_db_file, dir + u"/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    QCOMPARE(tree_of(dir), QStringList({u"Artifacts_Result/"_s, u"Artifacts_Result/Bluetooth_Logs/"_s,
                                        u"Artifacts_Result/Bluetooth_Logs/tmp/"_s}));
    run->frame.pub_set_result_directory(dir + end); // existing folders are no error
}

void test_result_store::transcript_of_the_set_up()
{
    run->prepare();
    QCOMPARE(run->log.take_messages(),
             QStringList({u"bluetooth_logs::set_destination_location: [set_destination_location] starts"_s,
                          u"bluetooth_logs::set_destination_location: [set_destination_location] ends"_s,
                          u"bluetooth_logs::create_destination_database: [create_destination_database] starts"_s,
                          u"bluetooth_logs::create_db_tables: [create_db_tables] starts"_s,
                          u"bluetooth_logs::create_db_tables: [create_db_tables] end"_s,
                          u"bluetooth_logs::create_destination_database: [create_destination_database] ends"_s}));
    QVERIFY(QSqlDatabase::contains(u"void bluetooth_logs::create_db_tables()"_s));
    QVERIFY(!QSqlDatabase::database(u"void bluetooth_logs::create_db_tables()"_s, false).isOpen());
}

void test_result_store::schema_data()
{
    QTest::addColumn<QString>("table");
    QTest::newRow("devices") << u"devices"_s;
    QTest::newRow("paired devices") << u"paired_devices"_s;
}

void test_result_store::schema()
{
    QFETCH(QString, table);
    run->prepare();
    QStringList columns;
    const QList<QVariantList> rows = run->database().rows(
        u"SELECT name, type, pk, \"notnull\", dflt_value FROM pragma_table_info('"_s + table + u"')"_s);
    for (const QVariantList &row : rows)
        columns.append(row.at(0).toString() + u' ' + row.at(1).toString() + (row.at(2).toInt() ? u" key"_s : u""_s));
    QCOMPARE(columns, QStringList({u"bookmark INTEGER"_s, u"INT INTEGER key"_s, u"system_account varchar(500)"_s,
                                   u"uuid VARCHAR(100)"_s, u"device_name VARCHAR(100)"_s, u"address VARCHAR(100)"_s,
                                   u"last_seen_time INTEGER"_s, u"last_connection_time INTEGER"_s,
                                   u"apple_tags VARCHAR(100)"_s, u"icloud_identifier VARCHAR(100)"_s,
                                   u"kaldo_tag_value varchar(100)"_s, u"notes_icon VARCHAR(1024)"_s,
                                   u"tags_icon VARCHAR(1024)"_s, u"os_scheme_display varchar(500)"_s,
                                   u"source_count_name varchar(500)"_s, u"source_file VARCHAR(1024)"_s,
                                   u"artifacts_relation_source_file VARCHAR(1024)"_s, u"notes VARCHAR(500)"_s}));
    // SQLite keeps the statement as it was given, doubled blanks included.
    QCOMPARE(run->database()
                 .rows(u"SELECT sql FROM sqlite_master WHERE name = '"_s + table + u"'"_s)
                 .first()
                 .first()
                 .toString(),
             u"CREATE TABLE "_s + table
                 + u"(bookmark INTEGER,INT INTEGER PRIMARY KEY,system_account varchar(500),uuid VARCHAR(100),"
                   "device_name VARCHAR(100),address VARCHAR(100),last_seen_time INTEGER,last_connection_time INTEGER,"
                   "apple_tags VARCHAR(100),icloud_identifier VARCHAR(100),kaldo_tag_value varchar(100),"
                   "notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),os_scheme_display varchar(500),"
                   "source_count_name varchar(500),source_file  VARCHAR(1024),"
                   "artifacts_relation_source_file  VARCHAR(1024),notes VARCHAR(500))"_s);
}

/** The file change counter, https://www.sqlite.org/fileformat.html section 1.3.7, counts transactions that wrote. */
void test_result_store::tables_are_made_in_one_transaction()
{
    run->prepare();
    const QByteArray file = content_of(run->frame.destination_db_file);
    QCOMPARE(file.sliced(24, 4), QByteArray("\0\0\0\1", 4));
}

void test_result_store::existing_rows_stay()
{
    run->prepare();
    run->database().execute(u"INSERT INTO devices(uuid) VALUES('kept')"_s);
    run->frame.pub_create_db_tables();
    QCOMPARE(run->database().quoted_rows(u"devices"_s, {u"uuid"_s}), QStringList{u"'kept'"_s});
}

void test_result_store::unopenable_database()
{
    QVERIFY(QDir().mkpath(run->db_path()));
    run->prepare();
    QCOMPARE(run->take_messages().mid(2),
             QStringList({u"bluetooth_logs::create_destination_database: [create_destination_database] starts"_s,
                          u"bluetooth_logs::create_db_tables: [create_db_tables] starts"_s,
                          u"bluetooth_logs::create_db_tables: [create_db_tables]Destination Db "
                          "opening------FAILED-------<case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s,
                          u"bluetooth_logs::create_destination_database: [create_destination_database] ends"_s}));
}

void test_result_store::failed_table_creation_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("other");
    QTest::newRow("devices") << u"devices"_s << u"paired_devices"_s;
    QTest::newRow("paired devices") << u"paired_devices"_s << u"devices"_s;
}

void test_result_store::failed_table_creation()
{
    QFETCH(QString, table);
    QFETCH(QString, other);
    run->frame.pub_set_result_directory(run->result_directory());
    run->database().execute(u"CREATE TABLE t(a)"_s);
    run->database().execute(u"CREATE INDEX "_s + table + u" ON t(a)"_s); // the name is taken
    run->prepare();
    const QStringList lines = run->take_messages();
    QCOMPARE(lines.size(), 11);
    const QString helper = u"plugin_static_function::execute_db_command_by_dbreference: "_s;
    QCOMPARE(
        lines.mid(4, 3).first(),
        helper
            + u" query  --------FAILED------ db file - <case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    QCOMPARE(lines.at(5), helper + u" CALLER FUNCTION -  -  void bluetooth_logs::create_db_tables()"_s);
    QVERIFY(lines.at(6).startsWith(helper + u" command -  CREATE TABLE IF NOT EXISTS "_s + table + u"("_s));
    QCOMPARE(lines.at(7),
             helper + u" error -  there is already an index named "_s + table + u" Unable to execute statement"_s);
    QCOMPARE(lines.at(8), u"bluetooth_logs::create_db_tables: table creation -----FAILED---- "_s + table);
    QCOMPARE(lines.at(9), u"bluetooth_logs::create_db_tables: [create_db_tables] end"_s);
    QCOMPARE(run->database()
                 .rows(u"SELECT * FROM sqlite_master WHERE type = 'table' AND name = '"_s + other + u"'"_s)
                 .size(),
             1);
}

void test_result_store::clearing()
{
    for (const int engine : {0, 1, 2}) {
        run->engine_type = engine;
        run->tabs = QStringList{u"devices"_s};
        run->prepare();
        run->database().execute(u"INSERT INTO devices(uuid) VALUES('x')"_s);
        run->database().execute(u"DELETE FROM paired_devices"_s);
        run->database().execute(u"INSERT INTO paired_devices(uuid) VALUES('y')"_s);
        run->log.take_lines();
        run->frame.pub_set_clear_db(true);
        QCOMPARE(run->log.take_lines(), QStringList());
        QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 0);
        QCOMPARE(run->database().rows(u"SELECT * FROM paired_devices"_s).size(), 1);
    }
}

void test_result_store::clearing_that_is_not_wanted()
{
    run->prepare();
    run->database().execute(u"INSERT INTO devices(uuid) VALUES('x')"_s);
    run->frame.pub_set_clear_db(false);
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 1);
}

void test_result_store::clearing_of_odd_names()
{
    run->tabs = QStringList{u"no_table"_s, u"x'; DROP TABLE devices; --"_s, u"devices"_s};
    run->prepare();
    run->database().execute(u"INSERT INTO devices(uuid) VALUES('x')"_s);
    run->log.take_lines();
    run->frame.pub_set_clear_db(true);
    const QString helper = u"plugin_static_function::execute_db_command_by_dbpath: "_s;
    const QString failed =
        helper
        + u" query  --------FAILED------ db file - <case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    const QString caller = helper + u"CALLER FUNCTION -  void bluetooth_logs::clear_db_tables()"_s;
    const QStringList lines = run->take_messages();
    QCOMPARE(lines.size(), 8);
    QCOMPARE(lines.first(4),
             QStringList({failed, caller, helper + u" command -  delete from 'no_table'"_s,
                          helper + u" error -  no such table: no_table Unable to execute statement"_s}));
    QCOMPARE(lines.at(6), helper + u" command -  delete from 'x'; DROP TABLE devices; --'"_s);
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 0); // emptied, not dropped
}

void test_result_store::clearing_without_a_database()
{
    run->prepare();
    QFile::remove(run->db_path());
    run->log.take_lines();
    run->frame.pub_set_clear_db(true);
    QCOMPARE(run->log.take_messages(),
             QStringList{u"bluetooth_logs::clear_db_tables: [clear_db_tables]DB not exists and so returning..."_s});
    QVERIFY(!QFile::exists(run->db_path()));
}

void test_result_store::clearing_that_is_gated_data()
{
    QTest::addColumn<int>("engine_type");
    QTest::addColumn<QStringList>("tabs");
    QTest::newRow("engine 3") << 3 << QStringList{u"devices"_s};
    QTest::newRow("engine -1") << -1 << QStringList{u"devices"_s};
    QTest::newRow("nothing selected") << 0 << QStringList{};
}

void test_result_store::clearing_that_is_gated()
{
    QFETCH(int, engine_type);
    QFETCH(QStringList, tabs);
    run->engine_type = engine_type;
    run->tabs = tabs;
    run->prepare();
    run->database().execute(u"INSERT INTO devices(uuid) VALUES('x')"_s);
    run->log.take_lines();
    run->frame.pub_set_clear_db(true);
    QCOMPARE(run->log.take_lines(), QStringList());
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 1);
}

void test_result_store::unknown_column_adds_no_row()
{
    run->prepare();
    QVERIFY(
        !plugin_static_function::execute_db_command_by_dbpath(u"INSERT INTO devices(uuid, model) VALUES('x', 'y')"_s,
                                                              run->db_path(), u"test"_s));
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 0);
}

void test_result_store::temporary_folder_is_removed()
{
    run->prepare();
    write_file(run->plugin_directory() + u"tmp/a/.hidden/file"_s, "x");
    run->frame.pub_remove_temporary_asthetics();
    QCOMPARE(tree_of(run->plugin_directory()), QStringList{u"Bluetooth_Logs.sqlite"_s});
}

void test_result_store::temporary_folder_before_any_result_directory()
{
    write_file(run->result_directory() + u"/file"_s, "kept");
    const QString current = QDir::currentPath();
    QDir::setCurrent(run->result_directory());
    run->frame.pub_remove_temporary_asthetics();
    QDir::setCurrent(current);
    QCOMPARE(tree_of(run->result_directory()), QStringList{u"file"_s});
}

BLUETOOTH_LOGS_TEST(test_result_store, QApplication)

#include "test_result_store.moc"
