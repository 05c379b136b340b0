// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "common/sqlite_connection.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/file_content.h"
#include "tests/support/log_watch.h"
#include "tests/support/macos_source.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(QJsonValue)

class test_macos_readers : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void value_conversion_data();
    void value_conversion();
    void null_in_a_number_column_is_an_empty_text();
    void column_names_are_kept();
    void rows_keep_the_query_order();
    void empty_table_and_empty_file();
    void older_layout();
    void json_functions_in_the_schema_data();
    void json_functions_in_the_schema();
    void names_of_any_script();
    void other_files_than_databases_data();
    void other_files_than_databases();
    void connection_is_set_up_before_the_path_is_logged();
    void connection_stays_registered_and_closed();
    void copy_is_not_changed_by_reading();

private:
    /** What the reader makes of the staged copies of one run. */
    QList<QJsonObject> read_other();
    QList<QJsonObject> read_paired();
    void extract();

    std::unique_ptr<macos_source> source;
    std::unique_ptr<plugin_run> run;
};

void test_macos_readers::init()
{
    strict_test::init();
    source = std::make_unique<macos_source>();
    run = std::make_unique<plugin_run>();
    run->source.source_root_path = source->root();
}

void test_macos_readers::extract()
{
    if (!QFile::exists(run->db_path()))
        run->run();
    run->log.take_lines();
}

QList<QJsonObject> test_macos_readers::read_other()
{
    extract();
    return run->frame.findChild<bluetooth_logs_macos *>()->read_other_devices();
}

QList<QJsonObject> test_macos_readers::read_paired()
{
    extract();
    return run->frame.findChild<bluetooth_logs_macos *>()->read_paired_devices();
}

void test_macos_readers::value_conversion_data()
{
    QTest::addColumn<QString>("literal"); // as SQL
    QTest::addColumn<QString>("other");   // the other reader's text
    QTest::addColumn<QJsonValue>("paired");
    QTest::addColumn<QString>("other_stored");  // in a text column of devices
    QTest::addColumn<QString>("other_time");    // in an integer column of devices
    QTest::addColumn<QString>("paired_stored"); // in a text column of paired_devices

    // clang-format off
    QTest::newRow("text")             << u"'text'"_s << u"text"_s << QJsonValue(u"text"_s) << u"'text'"_s << u"'text'"_s << u"'text'"_s;
    QTest::newRow("empty text")       << u"''"_s << u""_s << QJsonValue(u""_s) << u"''"_s << u"''"_s << u"''"_s;
    QTest::newRow("blanks stay")      << u"' a '"_s << u" a "_s << QJsonValue(u" a "_s) << u"' a '"_s << u"' a '"_s << u"' a '"_s;
    QTest::newRow("digits as text")   << u"'017'"_s << u"017"_s << QJsonValue(u"017"_s) << u"'017'"_s << u"17"_s << u"'017'"_s;
    QTest::newRow("NULL")             << u"NULL"_s << u""_s << QJsonValue(u""_s) << u"''"_s << u"''"_s << u"''"_s;
    QTest::newRow("integer")          << u"395626"_s << u"395626"_s << QJsonValue(395626) << u"'395626'"_s << u"395626"_s << u"NULL"_s;
    QTest::newRow("zero")             << u"0"_s << u"0"_s << QJsonValue(0) << u"'0'"_s << u"0"_s << u"NULL"_s;
    QTest::newRow("negative")         << u"-5"_s << u"-5"_s << QJsonValue(-5) << u"'-5'"_s << u"-5"_s << u"NULL"_s;
    QTest::newRow("2^53")             << u"9007199254740992"_s << u"9007199254740992"_s << QJsonValue(qint64(9007199254740992)) << u"'9007199254740992'"_s << u"9007199254740992"_s << u"NULL"_s;
    QTest::newRow("beyond 2^53")      << u"9007199254740993"_s << u"9007199254740993"_s << QJsonValue(qint64(9007199254740993)) << u"'9007199254740993'"_s << u"9007199254740993"_s << u"NULL"_s;
    QTest::newRow("largest integer")  << u"9223372036854775807"_s << u"9223372036854775807"_s << QJsonValue(std::numeric_limits<qint64>::max()) << u"'9223372036854775807'"_s << u"9223372036854775807"_s << u"NULL"_s;
    QTest::newRow("smallest integer") << u"-9223372036854775808"_s << u"-9223372036854775808"_s << QJsonValue(std::numeric_limits<qint64>::min()) << u"'-9223372036854775808'"_s << u"-9223372036854775808"_s << u"NULL"_s;
    QTest::newRow("real")             << u"1.5"_s << u"1.5"_s << QJsonValue(1.5) << u"'1.5'"_s << u"1.5"_s << u"NULL"_s;
    QTest::newRow("real of a whole")  << u"2.0"_s << u"2"_s << QJsonValue(2.0) << u"'2'"_s << u"2"_s << u"NULL"_s;
    QTest::newRow("blob")             << u"x'6162'"_s << u"ab"_s << QJsonValue(u"ab"_s) << u"'ab'"_s << u"'ab'"_s << u"'ab'"_s;
    QTest::newRow("text with NUL")    << u"CAST(x'610062' AS TEXT)"_s << QString::fromUtf8("a\0b", 3) << QJsonValue(QString::fromUtf8("a\0b", 3)) << u"'a'"_s << u"'a'"_s << u"'a'"_s;
    // clang-format on
}

void test_macos_readers::value_conversion()
{
    QFETCH(QString, literal);
    QFETCH(QString, other);
    QFETCH(QJsonValue, paired);
    // Columns without a type keep each value as it is written.
    for (const auto &[path, table] :
         {std::pair(source->other_db(), u"OtherDevices"_s), std::pair(source->paired_db(), u"PairedDevices"_s)}) {
        const sqlite_file database(path);
        database.execute(u"CREATE TABLE "_s + table
                         + u"(Uuid, Name, Address, LastSeenTime, LastConnectionTime, Tags)"_s);
        database.execute(u"INSERT INTO "_s + table + u"(Name, LastSeenTime, Tags) VALUES("_s + literal + u", "_s
                         + literal + u", "_s + literal + u")"_s);
    }
    const QList<QJsonObject> other_devices = read_other();
    QCOMPARE(other_devices.size(), 1);
    QCOMPARE(other_devices.first().value(u"Name"_s), QJsonValue(other));
    const QList<QJsonObject> paired_devices = read_paired();
    QCOMPARE(paired_devices.size(), 1);
    QCOMPARE(paired_devices.first().value(u"Name"_s), paired);

    QTEST(run->database().quoted_rows(u"devices"_s, {u"device_name"_s}).value(0), "other_stored");
    QTEST(run->database().quoted_rows(u"devices"_s, {u"last_seen_time"_s}).value(0), "other_time");
    QTEST(run->database().quoted_rows(u"paired_devices"_s, {u"device_name"_s}).value(0), "paired_stored");
    QTEST(run->database().quoted_rows(u"paired_devices"_s, {u"apple_tags"_s}).value(0), "paired_stored");
}

void test_macos_readers::null_in_a_number_column_is_an_empty_text()
{
    // The driver hands out every NULL as a null text, whatever the column's type.
    const sqlite_file database = source->make_paired();
    macos_source::add_device(database, u"PairedDevices"_s, {u"u"_s});
    const QList<QJsonObject> devices = read_paired();
    QCOMPARE(devices.first().value(u"LastSeenTime"_s), QJsonValue(u""_s));
    QCOMPARE(devices.first().value(u"Name"_s), QJsonValue(u""_s));
    QCOMPARE(run->database().quoted_rows(u"paired_devices"_s, {u"device_name"_s, u"last_seen_time"_s}),
             QStringList{u"''|''"_s});
}

void test_macos_readers::column_names_are_kept()
{
    const sqlite_file database(source->other_db());
    database.execute(u"CREATE TABLE OtherDevices(uuid, NAME, \"two words\", extra, größe, LastSeenTime)"_s);
    database.execute(u"INSERT INTO OtherDevices VALUES('a', 'b', 'c', 4, 'e', 6)"_s);
    const QList<QJsonObject> devices = read_other();
    QCOMPARE(devices, QList<QJsonObject>{QJsonObject({{u"uuid"_s, u"a"_s},
                                                      {u"NAME"_s, u"b"_s},
                                                      {u"two words"_s, u"c"_s},
                                                      {u"extra"_s, u"4"_s},
                                                      {u"größe"_s, u"e"_s},
                                                      {u"LastSeenTime"_s, u"6"_s}})});
    // The writer looks for the names as the operating system spells them; a missing member is NULL.
    QCOMPARE(run->database().quoted_rows(u"devices"_s, {u"uuid"_s, u"device_name"_s, u"last_seen_time"_s}),
             QStringList{u"NULL|NULL|6"_s});
}

void test_macos_readers::rows_keep_the_query_order()
{
    const sqlite_file database = source->make_paired();
    for (const QString &name : {u"c"_s, u"a"_s, u"b"_s, u"a"_s})
        macos_source::add_device(database, u"PairedDevices"_s, {u"u"_s, name});
    const QList<QJsonObject> devices = read_paired();
    QStringList names;
    for (const QJsonObject &device : devices)
        names.append(device.value(u"Name"_s).toString());
    QCOMPARE(names, QStringList({u"c"_s, u"a"_s, u"b"_s, u"a"_s}));
    QCOMPARE(devices.first().keys().size(), 10);
}

void test_macos_readers::empty_table_and_empty_file()
{
    source->make_other();
    write_file(source->paired_db(), "");
    QCOMPARE(read_other(), QList<QJsonObject>());
    QCOMPARE(run->take_messages().last(), u"bluetooth_logs_macos::read_other_devices: [read_other_devices] end"_s);
    QCOMPARE(read_paired(), QList<QJsonObject>());
    QCOMPARE(run->take_messages().last(),
             u"bluetooth_logs_macos::read_paired_devices:  -- READ WARNING -- no such table: PairedDevices Unable to "
             "execute statement"_s);
}

void test_macos_readers::older_layout()
{
    const sqlite_file database(source->paired_db());
    database.execute(u"CREATE TABLE PairedDevices(Uuid TEXT, Name TEXT, NameOrigin INT, Address TEXT, "
                     "ResolvedAddress TEXT, LastSeenTime INT, LastConnectionTime INT)"_s);
    database.execute(u"INSERT INTO PairedDevices VALUES('u', 'n', 0, 'a', NULL, 'text time', 5)"_s);
    extract();
    QCOMPARE(run->database().quoted_rows(u"paired_devices"_s,
                                         {u"uuid"_s, u"device_name"_s, u"address"_s, u"last_seen_time"_s,
                                          u"last_connection_time"_s, u"apple_tags"_s, u"icloud_identifier"_s}),
             QStringList{u"'u'|'n'|'a'|'text time'|NULL|NULL|NULL"_s});
}

void test_macos_readers::json_functions_in_the_schema_data()
{
    QTest::addColumn<QString>("statement");

    // clang-format off
    QTest::newRow("check of another table") << u"CREATE TABLE CustomProperties(Uuid TEXT, JSON TEXT CHECK(json_valid(JSON)))"_s;
    QTest::newRow("index")                  << u"CREATE INDEX i ON OtherDevices(json_quote(Name))"_s;
    QTest::newRow("partial index")          << u"CREATE INDEX i ON OtherDevices(Name) WHERE json_valid(Name)"_s;
    QTest::newRow("computed column")        << u"ALTER TABLE OtherDevices ADD COLUMN Quoted AS (json_quote(Name))"_s;
    // clang-format on
}

void test_macos_readers::json_functions_in_the_schema()
{
    // With trusted_schema=OFF SQLite 3.40 refuses every such schema as a whole.
    QFETCH(QString, statement);
    const sqlite_file database = source->make_other();
    macos_source::add_device(database, u"OtherDevices"_s, {u"u"_s, u"n"_s});
    database.execute(statement);
    QCOMPARE(read_other().size(), 1);
    QCOMPARE(run->database().quoted_rows(u"devices"_s, {u"device_name"_s}), QStringList{u"'n'"_s});
}

void test_macos_readers::names_of_any_script()
{
    const sqlite_file database = source->make_other();
    const QStringList names =
        {u"Größe"_s,       u"日本語"_s,      u"🎧👨‍👩‍👧"_s,   u"<b>&amp;'\""_s, u"\u001b[31mred"_s,
         u"\u202eright"_s, u"line\nbreak"_s, u"'; DROP TABLE devices; --"_s};
    for (const QString &name : names)
        macos_source::add_device(database, u"OtherDevices"_s, {u"u"_s, name});
    extract();
    const QList<QVariantList> rows = run->database().rows(u"SELECT device_name FROM devices ORDER BY INT"_s);
    QStringList stored;
    for (const QVariantList &row : rows)
        stored.append(row.first().toString());
    QCOMPARE(stored, names);
}

void test_macos_readers::other_files_than_databases_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error");
    QTest::newRow("text") << QByteArray(5000, 'x') << u"file is not a database Unable to execute statement"_s;
    QTest::newRow("a few bytes") << QByteArray("no database")
                                 << u"file is not a database Unable to execute statement"_s;
    QTest::newRow("header only") << QByteArray("SQLite format 3\0", 16)
                                 << u"file is not a database Unable to execute statement"_s;
}

void test_macos_readers::other_files_than_databases()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    write_file(source->other_db(), content);
    QCOMPARE(read_other(), QList<QJsonObject>());
    QCOMPARE(run->take_messages().last(), u"bluetooth_logs_macos::read_other_devices:  -- READ WARNING -- "_s + error);
    QVERIFY(!QSqlDatabase::database(u"MY_DAMAGED_CONNECTION"_s, false).isOpen());
}

void test_macos_readers::connection_is_set_up_before_the_path_is_logged()
{
    source->make_other();
    extract();
    // A host that still holds the connection makes Qt warn at the moment when the reader removes it.
    const QSqlDatabase held = open_sqlite_connection(u"MY_DAMAGED_CONNECTION"_s, u":memory:"_s);
    QStringList messages;
    watch_log([&messages](const QString &message) { messages.append(message.section(u'/', 0, 0)); },
              [this] { run->frame.findChild<bluetooth_logs_macos *>()->read_other_devices(); });
    QCOMPARE(messages, QStringList({u"[read_other_devices] start"_s,
                                    u"QSqlDatabasePrivate::removeDatabase: connection 'MY_DAMAGED_CONNECTION' is still "
                                    "in use, all queries will cease to work."_s,
                                    u"[read_other_devices] source_other_db_file : "_s, u"[read_other_devices] end"_s}));
}

void test_macos_readers::connection_stays_registered_and_closed()
{
    source->make_other();
    source->make_paired();
    read_other();
    read_paired();
    QVERIFY(QSqlDatabase::contains(u"MY_DAMAGED_CONNECTION"_s));
    QVERIFY(!QSqlDatabase::database(u"MY_DAMAGED_CONNECTION"_s, false).isOpen());
    for (const QString &name :
         {u"void bluetooth_logs_macos::extract_connected_devices()"_s,
          u"void bluetooth_logs_macos::extract_paired_devices()"_s, u"void bluetooth_logs::create_db_tables()"_s}) {
        QVERIFY2(QSqlDatabase::contains(name), qPrintable(name));
        QVERIFY2(!QSqlDatabase::database(name, false).isOpen(), qPrintable(name));
    }
}

void test_macos_readers::copy_is_not_changed_by_reading()
{
    // A checkpointed database in WAL mode, as the operating system leaves it.
    const sqlite_file database = source->make_other();
    database.rows(u"PRAGMA journal_mode=WAL"_s);
    macos_source::add_device(database, u"OtherDevices"_s, {u"u"_s, u"n"_s});
    const QByteArray content = content_of(source->other_db());
    QCOMPARE(content.mid(18, 2), QByteArray("\2\2"));
    QCOMPARE(read_other().size(), 1);
    QCOMPARE(content_of(run->plugin_directory() + u"Logs/com.apple.MobileBluetooth.ledevices.other.db"_s), content);
    QCOMPARE(content_of(source->other_db()), content);
}

BLUETOOTH_LOGS_TEST(test_macos_readers, QApplication)

#include "test_macos_readers.moc"
