// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/macos/bluetooth_logs_macos.h"
#include "tests/support/file_content.h"
#include "tests/support/log_watch.h"
#include "tests/support/macos_source.h"
#include "tests/support/plugin_run.h"
#include "tests/support/progress_record.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// What a whole run writes to the log, one text a line; "<case>" and "<source>" stand for the places of the test.
const QString find_lines = uR"(bluetooth_logs_macos::find_source_file: [find_source_file] start
bluetooth_logs_macos::find_source_file: [find_source_file] file found: <source>/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db
bluetooth_logs_macos::find_source_file: [find_source_file] file found: <source>/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db
bluetooth_logs_macos::find_source_file: [find_source_file] end
)"_s;
const QString nothing_found_lines = uR"(bluetooth_logs_macos::find_source_file: [find_source_file] start
bluetooth_logs_macos::find_source_file: [find_source_file] file not found: <source>/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db
bluetooth_logs_macos::find_source_file: [find_source_file] file not found: <source>/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db
bluetooth_logs_macos::find_source_file: [find_source_file] end
)"_s;
const QString start_line = u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - START\n"_s;
const QString end_line = u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - END\n"_s;
const QString stage_other_lines =
    uR"(bluetooth_logs_macos::copy_source_bluetooth_other_db: [copy_source_bluetooth_dbs] start
bluetooth_logs_macos::copy_source_bluetooth_other_db: [copy_source_bluetooth_dbs] temp_path does not exist, creating: <case>/Artifacts_Result/Bluetooth_Logs/Logs/
bluetooth_logs_macos::copy_source_bluetooth_other_db: [copy_source_bluetooth_dbs] end
)"_s;
const QString stage_paired_lines =
    uR"(bluetooth_logs_macos::copy_source_bluetooth_paired_db: [copy_source_bluetooth_dbs] start
bluetooth_logs_macos::copy_source_bluetooth_paired_db: [copy_source_bluetooth_dbs] temp_path exists: <case>/Artifacts_Result/Bluetooth_Logs/Logs/
bluetooth_logs_macos::copy_source_bluetooth_paired_db: [copy_source_bluetooth_dbs] end
)"_s;
const QString other_start_lines = uR"(bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] start
)"_s;
const QString read_other_lines = uR"(bluetooth_logs_macos::read_other_devices: [read_other_devices] start
bluetooth_logs_macos::read_other_devices: [read_other_devices] source_other_db_file : <case>/Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.other.db
bluetooth_logs_macos::read_other_devices: [read_other_devices] end
)"_s;
const QString other_end_line = u"bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] end\n"_s;
const QString paired_start_lines = uR"(bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] start
)"_s;
const QString read_paired_lines = uR"(bluetooth_logs_macos::read_paired_devices: [read_paired_devices] start
bluetooth_logs_macos::read_paired_devices: [read_paired_devices] Using db file: <case>/Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.paired.db
bluetooth_logs_macos::read_paired_devices: [read_paired_devices] end
)"_s;
const QString paired_end_line = u"bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] end\n"_s;
const QString write_other_lines = other_start_lines + read_other_lines + other_end_line;
const QString write_paired_lines = paired_start_lines + read_paired_lines + paired_end_line;
const QString none_found_tab_lines =
    uR"(bluetooth_logs_macos::copy_source_bluetooth_other_db: [copy_source_bluetooth_dbs] start
bluetooth_logs_macos::copy_source_bluetooth_other_db: [copy_source_bluetooth_dbs] source_file_other_list is empty
bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] start
bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] source_file_copied_connected_list is empty
bluetooth_logs_macos::copy_source_bluetooth_paired_db: [copy_source_bluetooth_dbs] start
bluetooth_logs_macos::copy_source_bluetooth_paired_db: [copy_source_bluetooth_dbs] source_file_paired_list is empty
bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] start
bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] source_file_copied_paired_list is empty
)"_s;

const QString cancelled_paired_lines =
    uR"(bluetooth_logs_macos::copy_source_bluetooth_paired_db: [copy_source_bluetooth_dbs] start
bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] start
bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] source_file_copied_paired_list is empty
)"_s;

QStringList lines_of(const QString &text)
{
    QStringList lines = text.split(u'\n');
    lines.removeLast();
    return lines;
}

/** The statement as Qt says that it executed it: its SQLite driver numbers the placeholders. */
QString executed_text(const QString &statement)
{
    QString text = statement;
    for (int number = 0; text.contains(u'?'); ++number)
        text.replace(text.indexOf(u'?'), 1, u':' + QString::number(number));
    return text;
}

} // namespace

class test_macos_run : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup();
    void full_run();
    void full_run_of_the_other_engines_data();
    void full_run_of_the_other_engines();
    void engine_types_that_extract_nothing_data();
    void engine_types_that_extract_nothing();
    void nothing_found();
    void one_table_selected_data();
    void one_table_selected();
    void order_of_the_selection_does_not_matter();
    void selections_that_select_nothing_data();
    void selections_that_select_nothing();
    void unopenable_result_database();
    void failing_inserts();
    void failing_insert_of_one_row();
    void missing_copy_reads_as_empty();
    void unopenable_copy();
    void cancelled_before();
    void cancelled_between_the_tables();
    void cancelled_during_the_rows();
    void rows_are_committed_together_and_labelled_one_by_one();
    void no_progress_within_a_second();
    void second_extraction();
    void second_extraction_keeps_the_first_copies();
    void records_seeded_by_an_earlier_source();
    void copies_are_exact_and_stay();
    void rows_of_a_write_ahead_log_are_not_read();

private:
    std::unique_ptr<macos_source> source;
    std::unique_ptr<plugin_run> run;
};

void test_macos_run::init()
{
    strict_test::init();
    source = std::make_unique<macos_source>();
    run = std::make_unique<plugin_run>();
    run->source.source_root_path = source->root();

    const sqlite_file other = source->make_other();
    macos_source::add_device(
        other, u"OtherDevices"_s,
        {u"UUID-1"_s, u"Kopfhörer 🎧"_s, 0, u"Public B4:C2:6A:7F:D3:7A"_s, {}, 395626, 2143, 0, u"A,B"_s, u"icloud"_s});
    macos_source::add_device(other, u"OtherDevices"_s,
                             {u"UUID-2"_s, {}, {}, u"Random 50:32:66:45:35:EF"_s, {}, 244, 0});
    macos_source::add_device(other, u"OtherDevices"_s, {u"UUID-2"_s, u""_s});
    const sqlite_file paired = source->make_paired();
    macos_source::add_device(
        paired, u"PairedDevices"_s,
        {u"UUID-3"_s, u"Uhr"_s, 1, u"Public 00:11:22:33:44:55"_s, {}, 4315986, 9639, 0, u"A,B"_s, u"icloud"_s});
    macos_source::add_device(paired, u"PairedDevices"_s,
                             {u"UUID-4"_s, u"=cmd|' /C calc'!A0"_s, {}, {}, {}, u"17th"_s, u"never"_s});
}

void test_macos_run::cleanup()
{
    run.reset();
    source.reset();
}

void test_macos_run::full_run()
{
    progress_record progress(run->frame);
    run->run();

    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line + stage_other_lines + write_other_lines
                                            + stage_paired_lines + write_paired_lines + end_line));
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 3"_s, u"tabs 1"_s, u"records 5"_s, u"tabs 2"_s,
                                           u"records 5"_s, u"records 5"_s}));

    const QString other_file = u"'"_s + source->other_db() + u"'"_s;
    const QString paired_file = u"'"_s + source->paired_db() + u"'"_s;
    QCOMPARE(run->database().quoted_rows(u"devices"_s, result_columns()),
             QStringList({u"0|1|NULL|'UUID-1'|'Kopfhörer 🎧'|'Public B4:C2:6A:7F:D3:7A'|395626|2143|NULL|NULL|NULL|NULL|"
                          "NULL|'macOS 12.6'|'Source1'|"_s
                              + other_file + u"|NULL|NULL"_s,
                          u"0|2|NULL|'UUID-2'|''|'Random 50:32:66:45:35:EF'|244|0|NULL|NULL|NULL|NULL|NULL|"
                          "'macOS 12.6'|'Source1'|"_s
                              + other_file + u"|NULL|NULL"_s,
                          u"0|3|NULL|'UUID-2'|''|''|''|''|NULL|NULL|NULL|NULL|NULL|"
                          "'macOS 12.6'|'Source1'|"_s
                              + other_file + u"|NULL|NULL"_s}));
    QCOMPARE(run->database().quoted_rows(u"paired_devices"_s, result_columns()),
             QStringList({u"0|1|NULL|'UUID-3'|'Uhr'|'Public 00:11:22:33:44:55'|NULL|NULL|'A,B'|'icloud'|NULL|NULL|NULL|"
                          "'macOS 12.6'|'Source1'|"_s
                              + paired_file + u"|NULL|NULL"_s,
                          u"0|2|NULL|'UUID-4'|'=cmd|'' /C calc''!A0'|''|'17th'|'never'|''|''|NULL|NULL|NULL|"
                          "'macOS 12.6'|'Source1'|"_s
                              + paired_file + u"|NULL|NULL"_s}));
    QVERIFY(!QFile::exists(run->plugin_directory() + u"tmp"_s));
}

void test_macos_run::full_run_of_the_other_engines_data()
{
    QTest::addColumn<int>("engine_type");
    QTest::addColumn<QString>("field");
    QTest::newRow("desk") << 0 << u"[KALDO_DESK]"_s;
    QTest::newRow("field") << 1 << u"[KALDO_FIELD]"_s;
    QTest::newRow("boot") << 2 << u"[KALDO_BOOT]"_s;
}

void test_macos_run::full_run_of_the_other_engines()
{
    QFETCH(int, engine_type);
    QFETCH(QString, field);
    run->engine_type = engine_type;
    run->run();
    const QStringList lines = run->log.take_lines();
    QCOMPARE(lines.size(), lines_of(find_lines + start_line + stage_other_lines + write_other_lines + stage_paired_lines
                                    + write_paired_lines + end_line)
                               .size());
    for (const QString &line : lines)
        QVERIFY2(line.startsWith(u"[time]"_s + field + u"[Artifacts Extraction]["_s), qPrintable(line));
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 3);
    QCOMPARE(run->database().rows(u"SELECT * FROM paired_devices"_s).size(), 2);
}

void test_macos_run::engine_types_that_extract_nothing_data()
{
    QTest::addColumn<int>("engine_type");
    QTest::newRow("3") << 3;
    QTest::newRow("-1") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void test_macos_run::engine_types_that_extract_nothing()
{
    QFETCH(int, engine_type);
    run->engine_type = engine_type;
    progress_record progress(run->frame);
    run->run();
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 0"_s, u"records 0"_s}));
    QStringList lines = run->log.take_lines();
    for (QString &line : lines) {
        const QString field = u"[ -----FAILED----- to find Engine Type ]["_s + QString::number(engine_type) + u"]"_s;
        QVERIFY2(line.startsWith(u"[time]"_s + field), qPrintable(line));
    }
    QCOMPARE(lines.size(), lines_of(find_lines + start_line + end_line).size());
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 0);
    QVERIFY(!QFile::exists(run->plugin_directory() + u"Logs"_s));
}

void test_macos_run::nothing_found()
{
    QFile::remove(source->other_db());
    QFile::remove(source->paired_db());
    progress_record progress(run->frame);
    run->run();
    QCOMPARE(run->take_messages(), lines_of(nothing_found_lines + start_line + none_found_tab_lines + end_line));
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 0"_s, u"tabs 1"_s, u"records 0"_s, u"tabs 2"_s,
                                           u"records 0"_s, u"records 0"_s}));
    QVERIFY(!QFile::exists(run->plugin_directory() + u"Logs"_s));
}

void test_macos_run::one_table_selected_data()
{
    QTest::addColumn<QString>("tab");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QStringList>("events");
    QTest::newRow("devices") << u"devices"_s
                             << lines_of(find_lines + start_line + stage_other_lines + write_other_lines + end_line)
                             << QStringList{u"records 0"_s, u"records 3"_s, u"tabs 1"_s, u"records 3"_s,
                                            u"records 3"_s};
    QString stage_lines = stage_paired_lines;
    stage_lines.replace(u"temp_path exists: "_s, u"temp_path does not exist, creating: "_s);
    QTest::newRow("paired devices") << u"paired_devices"_s
                                    << lines_of(find_lines + start_line + stage_lines + write_paired_lines + end_line)
                                    << QStringList{u"records 0"_s, u"records 2"_s, u"tabs 1"_s, u"records 2"_s,
                                                   u"records 2"_s};
}

void test_macos_run::one_table_selected()
{
    QFETCH(QString, tab);
    run->tabs = QStringList{tab};
    progress_record progress(run->frame);
    run->run();
    QTEST(run->take_messages(), "lines");
    QTEST(progress.events, "events");
    QCOMPARE(QDir(run->plugin_directory() + u"Logs"_s).entryList(QDir::Files).size(), 1);
}

void test_macos_run::order_of_the_selection_does_not_matter()
{
    run->tabs = QStringList{u"paired_devices"_s, u"other"_s, u"devices"_s, u"devices"_s};
    run->run();
    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line + stage_other_lines + write_other_lines
                                            + stage_paired_lines + write_paired_lines + end_line));
}

void test_macos_run::selections_that_select_nothing_data()
{
    QTest::addColumn<QStringList>("tabs");
    QTest::newRow("empty list") << QStringList{};
    QTest::newRow("other case") << QStringList{u"Devices"_s, u"PAIRED_DEVICES"_s};
    QTest::newRow("blank behind") << QStringList{u"devices "_s, u"paired_devices "_s};
    QTest::newRow("both in one") << QStringList{u"devices,paired_devices"_s};
    QTest::newRow("empty text") << QStringList{u""_s};
}

void test_macos_run::selections_that_select_nothing()
{
    QFETCH(QStringList, tabs);
    run->tabs = tabs;
    progress_record progress(run->frame);
    run->run();
    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line + end_line));
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 0"_s, u"records 0"_s}));
}

void test_macos_run::unopenable_result_database()
{
    run->prepare();
    QFile::remove(run->db_path());
    QVERIFY(QDir().mkpath(run->db_path())); // a folder in its place
    run->log.take_lines();
    progress_record progress(run->frame);
    run->extract();

    const QString other_lines =
        uR"(bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] Destination Db opening ----FAILED---- 
bluetooth_logs_macos::extract_connected_devices: unable to open database file Error opening database
bluetooth_logs_macos::extract_connected_devices: <case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite
)"_s;
    const QString paired_lines =
        uR"(bluetooth_logs_macos::extract_paired_devices: [extract_paired_devices] Destination Db opening ----FAILED---- 
bluetooth_logs_macos::extract_paired_devices: unable to open database file Error opening database
bluetooth_logs_macos::extract_paired_devices: <case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite
)"_s;
    QCOMPARE(run->take_messages(),
             lines_of(find_lines + start_line + stage_other_lines + other_start_lines + other_lines + stage_paired_lines
                      + paired_start_lines + paired_lines + end_line));
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 0"_s, u"tabs 1"_s, u"records 0"_s, u"tabs 2"_s,
                                           u"records 0"_s, u"records 0"_s}));
}

void test_macos_run::failing_inserts()
{
    run->prepare();
    run->database().execute(u"DROP TABLE devices"_s);
    run->log.take_lines();
    progress_record progress(run->frame);
    run->extract();

    const QString failure = executed_text(
        uR"(bluetooth_logs_macos::extract_connected_devices:  query insert file------FAILED------
bluetooth_logs_macos::extract_connected_devices: no such table: devices Unable to execute statement
bluetooth_logs_macos::extract_connected_devices: insert into devices(bookmark, uuid, device_name, address, source_file,last_seen_time, last_connection_time,os_scheme_display,source_count_name) values(?,?,?,?,?,?,?, ?,?)
)"_s);
    QCOMPARE(run->take_messages(),
             lines_of(find_lines + start_line + stage_other_lines + other_start_lines + read_other_lines + failure
                      + failure + failure + other_end_line + stage_paired_lines + write_paired_lines + end_line));
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 0"_s, u"tabs 1"_s, u"records 2"_s, u"tabs 2"_s,
                                           u"records 2"_s, u"records 2"_s}));
}

void test_macos_run::failing_insert_of_one_row()
{
    run->tabs = QStringList{u"paired_devices"_s};
    run->prepare();
    run->database().execute(u"CREATE TRIGGER refuse BEFORE INSERT ON paired_devices WHEN NEW.uuid = 'UUID-3' "
                            "BEGIN SELECT RAISE(ABORT, 'refused'); END"_s);
    run->log.take_lines();
    run->extract();
    QStringList failures = run->take_messages();
    failures.removeIf([](const QString &line) { return !line.startsWith(u"bluetooth_logs_macos::extract_paired"_s); });
    QCOMPARE(failures,
             lines_of(
                 paired_start_lines
                 + executed_text(uR"(bluetooth_logs_macos::extract_paired_devices:  query insert file------FAILED------
bluetooth_logs_macos::extract_paired_devices: refused Unable to fetch row
bluetooth_logs_macos::extract_paired_devices: INSERT INTO paired_devices(bookmark, uuid, device_name, address, source_file, last_seen_time, last_connection_time, apple_tags, icloud_identifier, os_scheme_display, source_count_name) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)
)"_s) + paired_end_line));
    QCOMPARE(run->database().quoted_rows(u"paired_devices"_s, {u"uuid"_s}), QStringList{u"'UUID-4'"_s});
}

void test_macos_run::missing_copy_reads_as_empty()
{
    QFile::remove(source->other_db());
    QVERIFY(QDir().mkpath(source->other_db())); // a directory counts as found; its copy fails silently
    run->run();
    const QString read_lines = uR"(bluetooth_logs_macos::read_other_devices: [read_other_devices] start
bluetooth_logs_macos::read_other_devices: [read_other_devices] source_other_db_file : <case>/Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.other.db
bluetooth_logs_macos::read_other_devices:  -- READ WARNING -- no such table: OtherDevices Unable to execute statement
)"_s;
    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line + stage_other_lines + other_start_lines + read_lines
                                            + other_end_line + stage_paired_lines + write_paired_lines + end_line));
}

void test_macos_run::unopenable_copy()
{
    run->prepare();
    const QString logs = run->plugin_directory() + u"Logs/"_s;
    QVERIFY(QDir().mkpath(logs + u"com.apple.MobileBluetooth.ledevices.other.db"_s)); // folders in the copies' places
    QVERIFY(QDir().mkpath(logs + u"com.apple.MobileBluetooth.ledevices.paired.db"_s));
    run->log.take_lines();
    run->extract();
    QString staging = stage_other_lines;
    staging.replace(u"temp_path does not exist, creating: "_s, u"temp_path exists: "_s);
    const QString other_lines = uR"(bluetooth_logs_macos::read_other_devices: [read_other_devices] start
bluetooth_logs_macos::read_other_devices: [read_other_devices] source_other_db_file : <case>/Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.other.db
bluetooth_logs_macos::read_other_devices: [read_other_devices] Source Db opening ----FAILED---- 
bluetooth_logs_macos::read_other_devices: unable to open database file Error opening database
bluetooth_logs_macos::read_other_devices: <case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite
)"_s;
    const QString paired_lines = uR"(bluetooth_logs_macos::read_paired_devices: [read_paired_devices] start
bluetooth_logs_macos::read_paired_devices: [read_paired_devices] Using db file: <case>/Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.paired.db
bluetooth_logs_macos::read_paired_devices: [read_paired_devices] Source Db opening ----FAILED---- 
bluetooth_logs_macos::read_paired_devices: unable to open database file Error opening database
)"_s;
    QCOMPARE(run->take_messages(),
             lines_of(find_lines + start_line + staging + other_start_lines + other_lines + other_end_line
                      + stage_paired_lines + paired_start_lines + paired_lines + paired_end_line + end_line));
}

void test_macos_run::cancelled_before()
{
    run->prepare();
    run->log.take_lines();
    progress_record progress(run->frame);
    run->frame.pub_cancel_extraction();
    run->extract();
    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line));
    QCOMPARE(progress.events, QStringList{u"records 0"_s});
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 0);

    // The flag goes with the next reset, and the same frame extracts.
    run->run();
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 3);
}

void test_macos_run::cancelled_between_the_tables()
{
    QObject::connect(&run->frame, &bluetooth_logs::signal_tab_processed_of_plugin_overall, &run->frame,
                     [this](int) { run->frame.pub_cancel_extraction(); });
    progress_record progress(run->frame);
    run->run();
    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line + stage_other_lines + write_other_lines
                                            + cancelled_paired_lines + end_line));
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 3"_s, u"tabs 1"_s, u"records 3"_s, u"tabs 2"_s,
                                           u"records 3"_s, u"records 3"_s}));
    QCOMPARE(QDir(run->plugin_directory() + u"Logs"_s).entryList(QDir::Files),
             QStringList{u"com.apple.MobileBluetooth.ledevices.other.db"_s});
}

void test_macos_run::cancelled_during_the_rows()
{
    // The timed signal comes once, at the first row; the rows of the copy are finished all the same.
    progress_record progress(run->frame);
    QObject::connect(&run->frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall, &run->frame,
                     [this](qint64 records) {
                         if (records > 0)
                             run->frame.pub_cancel_extraction();
                     });
    run->prepare();
    run->log.take_lines();
    slow_down_at(u"[read_other_devices] start"_s, [this] { run->extract(); });
    QCOMPARE(progress.events, QStringList({u"records 0"_s, u"records 1"_s, u"records 3"_s, u"tabs 1"_s, u"records 3"_s,
                                           u"tabs 2"_s, u"records 3"_s, u"records 3"_s}));
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 3);
    QCOMPARE(run->database().rows(u"SELECT * FROM paired_devices"_s).size(), 0);
    QCOMPARE(run->take_messages(), lines_of(find_lines + start_line + stage_other_lines + write_other_lines
                                            + cancelled_paired_lines + end_line));
}

void test_macos_run::rows_are_committed_together_and_labelled_one_by_one()
{
    run->tabs = QStringList{u"devices"_s};
    run->prepare();
    QList<qsizetype> rows_seen;
    QObject::connect(&run->frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall, &run->frame,
                     [&](qint64 records) {
                         rows_seen.append(run->database().rows(u"SELECT * FROM devices"_s).size());
                         if (records == 1)
                             run->frame.pub_set_source_count(9);
                     });
    slow_down_at(u"[read_other_devices] start"_s, [this] { run->extract(); });
    QCOMPARE(rows_seen, QList<qsizetype>({0, 0, 3, 3, 3})); // the second signal comes between the rows
    QCOMPARE(run->database().quoted_rows(u"devices"_s, {u"source_count_name"_s}),
             QStringList({u"'Source1'"_s, u"'Source9'"_s, u"'Source9'"_s}));
}

void test_macos_run::no_progress_within_a_second()
{
    run->tabs = QStringList{u"devices"_s};
    progress_record progress(run->frame);
    const auto wait = [](const QString &message) {
        if (message == u"[read_other_devices] start"_s)
            QTest::qSleep(700);
    };
    QElapsedTimer timer;
    do { // once, unless the machine is so busy that the second passes all the same
        run->prepare();
        progress.events.clear();
        timer.start();
        watch_log(wait, [this] { run->extract(); });
    } while (timer.elapsed() > 1000);
    QCOMPARE(progress.events.indexOf(u"tabs 1"_s), 2); // behind the first signal and the tab's own
}

void test_macos_run::second_extraction()
{
    // The lists of copies only ever grow: the second run reads the copy twice and knows the source of the first only.
    run->run();
    run->log.take_lines();
    run->extract();
    QString staging = stage_other_lines;
    staging.replace(u"temp_path does not exist, creating: "_s, u"temp_path exists: "_s);
    QCOMPARE(run->take_messages(),
             lines_of(find_lines + start_line + staging + other_start_lines + read_other_lines + read_other_lines
                      + other_end_line + stage_paired_lines + paired_start_lines + read_paired_lines + read_paired_lines
                      + paired_end_line + end_line));
    const QString known = u"'"_s + source->paired_db() + u"'"_s;
    QCOMPARE(run->database().quoted_rows(u"paired_devices"_s, {u"source_file"_s}),
             QStringList({known, known, known, known, u"NULL"_s, u"NULL"_s}));
    QCOMPARE(run->database().rows(u"SELECT * FROM devices"_s).size(), 9);
}

void test_macos_run::second_extraction_keeps_the_first_copies()
{
    run->run();
    macos_source::add_device(sqlite_file(source->other_db()), u"OtherDevices"_s, {u"UUID-NEW"_s});
    run->extract();
    QCOMPARE(run->database().rows(u"SELECT * FROM devices WHERE uuid = 'UUID-NEW'"_s).size(), 0);
}

void test_macos_run::records_seeded_by_an_earlier_source()
{
    // Without pub_set_essentials between the runs the totals go on.
    run->run();
    progress_record progress(run->frame);
    run->frame.pub_extract_artifacts();
    QCOMPARE(progress.events.first(), u"records 0"_s);
    QCOMPARE(progress.events.mid(1, 2), QStringList({u"records 11"_s, u"tabs 3"_s}));
    QCOMPARE(progress.events.last(), u"records 15"_s);
}

void test_macos_run::copies_are_exact_and_stay()
{
    write_file(source->other_db() + u"-journal"_s, "");
    write_file(source->paired_db() + u"-shm"_s, "companion");
    write_file(source->paired_db() + u"-wal"_s, "companion");
    const QByteArray other = content_of(source->other_db());
    const QByteArray paired = content_of(source->paired_db());
    run->run();
    const QString logs = run->plugin_directory() + u"Logs/"_s;
    QCOMPARE(tree_of(logs), QStringList({u"com.apple.MobileBluetooth.ledevices.other.db"_s,
                                         u"com.apple.MobileBluetooth.ledevices.paired.db"_s}));
    QCOMPARE(content_of(logs + u"com.apple.MobileBluetooth.ledevices.other.db"_s), other);
    QCOMPARE(content_of(logs + u"com.apple.MobileBluetooth.ledevices.paired.db"_s), paired);
    QCOMPARE(content_of(source->other_db()), other);
    QCOMPARE(content_of(source->paired_db()), paired);
}

void test_macos_run::rows_of_a_write_ahead_log_are_not_read()
{
    sqlite_file(source->other_db()).rows(u"PRAGMA journal_mode=WAL"_s);
    const QString name = u"writer"_s;
    {
        QSqlDatabase writer = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        writer.setDatabaseName(source->other_db());
        QVERIFY(writer.open());
        QVERIFY(QSqlQuery(writer).exec(u"INSERT INTO OtherDevices(Uuid) VALUES('UUID-NEW')"_s));
        QVERIFY(QFile::exists(source->other_db() + u"-wal"_s));
        run->run(); // before the writer puts the row into the database itself
    }
    QSqlDatabase::removeDatabase(name);
    QCOMPARE(run->database().quoted_rows(u"devices"_s, {u"uuid"_s}),
             QStringList({u"'UUID-1'"_s, u"'UUID-2'"_s, u"'UUID-2'"_s}));
}

BLUETOOTH_LOGS_TEST(test_macos_run, QApplication)

#include "test_macos_run.moc"
