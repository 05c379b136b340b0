// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/extractors/ios_uid/ios_uid_case.h"
#include "tests/support/log_watch.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QSqlDatabase>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

using step_function = void (bluetooth_logs_ios_uid::*)();
Q_DECLARE_METATYPE(step_function)

namespace {

const QString available_name = u"bluetooth_logs_ios_uid::extract_available_devices"_s;
const QString paired_name = u"bluetooth_logs_ios_uid::extract_paired_devices"_s;

/** Both steps, with what the log calls them and how they say that the result database cannot be opened. */
void add_steps()
{
    QTest::addColumn<step_function>("step");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("open_failed");

    // clang-format off
    QTest::newRow("devices")        << &bluetooth_logs_ios_uid::extract_available_devices << available_name << u" Destination Db opening ----FAILED---- "_s;
    QTest::newRow("paired devices") << &bluetooth_logs_ios_uid::extract_paired_devices    << paired_name    << u" Destination Db opening ---FAILED--- "_s;
    // clang-format on
}

/** Lines of the log, all of one function. */
QStringList of_function(const QString &name, QStringList messages)
{
    for (QString &message : messages)
        message.prepend(name + u": "_s);
    return messages;
}

/** Three lines for both steps, of which the second and third say who they are. */
constexpr char log_text[] = "Nov 15 20:32:16 host proc[1] <Notice>: On active device: BLE device found: a, Nm 'one'\n"
                            "Nov 15 20:32:17 host proc[1] <Notice>: On active device: BLE device found: a, Nm 'two'\n"
                            "Nov 15 20:32:18 host proc[1] <Notice>: On active device: BLE device found: a, Nm 'three'\n"
                            "Nov 15 20:32:19 host proc[1] <Notice>: nothing\n";

qint64 row_count(const ios_uid_case &test)
{
    return test.results.rows(u"SELECT (SELECT count(*) FROM devices) + (SELECT count(*) FROM paired_devices)"_s)
        .constFirst()
        .constFirst()
        .toLongLong();
}

} // namespace

class test_read_log : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void whole_run_against_the_tables_of_the_plugin();
    void result_database_cannot_be_opened_data();
    void result_database_cannot_be_opened();
    void result_database_must_not_lie_in_the_source_data();
    void result_database_must_not_lie_in_the_source();
    void source_file_cannot_be_opened_data();
    void source_file_cannot_be_opened();
    void both_steps_report_the_source_file();
    void empty_source_file_data();
    void empty_source_file();
    void a_read_error_is_reported_data();
    void a_read_error_is_reported();
    void a_failed_insert_does_not_stop_the_others_data();
    void a_failed_insert_does_not_stop_the_others();
    void cancelled_before_data();
    void cancelled_before();
    void cancelled_by_a_progress_signal_data();
    void cancelled_by_a_progress_signal();
    void progress_within_a_step();
    void rows_are_committed_together_and_labelled_one_by_one();
    void a_timer_that_never_started_reports_nothing();
    void connection_stays_closed_data();
    void connection_stays_closed();
};

void test_read_log::whole_run_against_the_tables_of_the_plugin()
{
    const ios_uid_case test;
    test.write_log("x\n"
                   "Nov 15 20:32:16 host proc[1]: BLE device found: SFDevice ID 1A2B, Nm 'a', Md 'b'\n"
                   "Nov 15 20:32:17 host proc[1] <Notice>: Connected active device: X, PI 1, Nm 'a'\n"
                   "Nov 15 20:32:18 host proc[1]: BLE device found: none\n");
    plugin_run run;
    run.source.os_scheme_internal = u"iOS_UID"_s;
    run.source.source_log_file_path = test.log_path;
    run.tabs = QStringList{u"paired_devices"_s, u"devices"_s};
    QStringList emitted;
    connect(&run.frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall, this,
            [&emitted](qint64 records) { emitted.append(u"records "_s + QString::number(records)); });
    connect(&run.frame, &bluetooth_logs::signal_tab_processed_of_plugin_overall, this,
            [&emitted](int count) { emitted.append(u"tabs "_s + QString::number(count)); });
    run.prepare();
    run.extract();

    const QString database = u"<case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    // The executed statement as Qt reports it, with the driver's names for the "?".
    const QStringList failed_device{
        u" query insert file------FAILED------"_s + database,
        u"table devices has no column named model Unable to execute statement"_s,
        u"insert into devices(bookmark, device_name, model, sf_device_id, date,os_scheme_display,source_count_name) values(:0,:1,:2,  :3,:4,:5,:6)"_s};
    const QStringList failed_paired_device{
        u" query insert file------FAILED------"_s + database,
        u"table paired_devices has no column named device_address Unable to execute statement"_s,
        u"insert into paired_devices(bookmark,  device_address, device_name, model, status, date,os_scheme_display,source_count_name) values(:0,:1,:2,:3,  :4,:5,:6,:7)"_s};
    QStringList expected{
        u"bluetooth_logs::set_destination_location: [set_destination_location] starts"_s,
        u"bluetooth_logs::set_destination_location: [set_destination_location] ends"_s,
        u"bluetooth_logs::create_destination_database: [create_destination_database] starts"_s,
        u"bluetooth_logs::create_db_tables: [create_db_tables] starts"_s,
        u"bluetooth_logs::create_db_tables: [create_db_tables] end"_s,
        u"bluetooth_logs::create_destination_database: [create_destination_database] ends"_s,
        u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - START"_s,
    };
    expected += of_function(available_name,
                            QStringList{u" start"_s} + failed_device + failed_device + QStringList{u" end"_s});
    expected += of_function(paired_name, QStringList{u" start"_s} + failed_paired_device + QStringList{u" end"_s});
    expected += u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - END"_s;
    QCOMPARE(run.take_messages(), expected);
    QCOMPARE(emitted, QStringList({u"records 0"_s, u"records 0"_s, u"tabs 1"_s, u"records 0"_s, u"tabs 2"_s,
                                   u"records 0"_s, u"records 0"_s}));
    QCOMPARE(run.database().rows(u"SELECT * FROM devices"_s).size(), 0);
    QCOMPARE(run.database().rows(u"SELECT * FROM paired_devices"_s).size(), 0);
}

void test_read_log::result_database_cannot_be_opened_data()
{
    add_steps();
}

void test_read_log::result_database_cannot_be_opened()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);
    QFETCH(QString, open_failed);

    ios_uid_case test;
    test.write_log(log_text);
    const QString database = test.dir.filePath(u"missing/results.sqlite"_s);
    test.extractor.ios_uid_set_destination_location({}, {}, database);
    (test.extractor.*step)();
    QCOMPARE(test.debug_log.take_messages(),
             of_function(name, {u" start"_s, open_failed + database,
                                u"unable to open database file Error opening database"_s}));
    QCOMPARE(test.signals_emitted, QStringList());
}

void test_read_log::result_database_must_not_lie_in_the_source_data()
{
    add_steps();
}

void test_read_log::result_database_must_not_lie_in_the_source()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);
    QFETCH(QString, open_failed);

    ios_uid_case test;
    const QString root = test.dir.filePath(u"root/"_s);
    const QString database = test.dir.filePath(u"link.sqlite"_s);
    QVERIFY(QDir().mkpath(root));
    QVERIFY(QFile::link(root + u"evidence.sqlite"_s, database));
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.source_root_path = root;
    source.source_log_file_path = test.log_path;
    test.extractor.ios_uid_set_source_info(source);
    test.extractor.ios_uid_set_destination_location({}, {}, database);
    (test.extractor.*step)();
    QCOMPARE(test.debug_log.take_messages(), of_function(name, {u" start"_s, open_failed + database, u""_s}));
    QVERIFY(QDir(root).isEmpty());
}

void test_read_log::source_file_cannot_be_opened_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("error");

    // clang-format off
    QTest::newRow("missing")           << u"missing.log"_s     << u"No such file or directory"_s;
    QTest::newRow("below a file")      << u"results.sqlite/a"_s << u"Not a directory"_s;
    QTest::newRow("a directory")       << u"."_s               << u"file to open is a directory"_s;
    QTest::newRow("a link to nothing") << u"link"_s            << u"No such file or directory"_s;
    // clang-format on
}

void test_read_log::source_file_cannot_be_opened()
{
    QFETCH(QString, path);
    QFETCH(QString, error);

    ios_uid_case test;
    QVERIFY(QFile::link(test.dir.filePath(u"nowhere"_s), test.dir.filePath(u"link"_s)));
    path = test.dir.filePath(path);
    QFile file(path);
    QVERIFY(!file.open(QIODevice::ReadOnly));
    QCOMPARE(file.errorString(), error);

    test.set_log_path(path);
    test.extractor.extract_available_devices();
    QCOMPARE(test.debug_log.take_messages(),
             of_function(available_name,
                         {u" start"_s, u" source file open ------FAILED-------"_s + path, u" Error :- "_s + error}));
}

void test_read_log::both_steps_report_the_source_file()
{
    ios_uid_case test;
    test.set_log_path(QString());
    test.extractor.ios_uid_extract_artifacts();
    const QString fifo = test.dir.filePath(u"fifo"_s);
    QCOMPARE(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    test.set_log_path(fifo);
    test.extractor.ios_uid_extract_artifacts();

    QStringList expected;
    for (const QStringList &messages :
         {QStringList{u" start"_s, u" source file open ------FAILED-------"_s, u" Error :- No file name specified"_s},
          QStringList{u" start"_s, u" source file open ------FAILED-------"_s + fifo,
                      u" Error :- Not a regular file"_s}})
        expected << of_function(available_name, messages) << of_function(paired_name, messages);
    QCOMPARE(test.debug_log.take_messages(), expected);
    QCOMPARE(test.signals_emitted,
             QStringList({u"records 0"_s, u"tabs 1"_s, u"records 0"_s, u"tabs 2"_s, u"records 0"_s, u"records 0"_s,
                          u"tabs 3"_s, u"records 0"_s, u"tabs 4"_s, u"records 0"_s}));
}

void test_read_log::empty_source_file_data()
{
    add_steps();
}

void test_read_log::empty_source_file()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);

    ios_uid_case test;
    test.write_log({});
    (test.extractor.*step)();
    QCOMPARE(test.debug_log.take_messages(), of_function(name, {u" start"_s, u" end"_s}));
    QCOMPARE(row_count(test), 0);
}

void test_read_log::a_read_error_is_reported_data()
{
    add_steps();
}

void test_read_log::a_read_error_is_reported()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);

    // A regular file that opens well, and whose first bytes cannot be read.
    const QString unreadable = u"/proc/self/mem"_s;
    if (!QFile::exists(unreadable))
        QSKIP("this system has no such file");
    ios_uid_case test;
    test.set_log_path(unreadable);
    (test.extractor.*step)();
    QCOMPARE(test.debug_log.take_messages(), of_function(name, {u" start"_s, u" Error :- Input/output error"_s}));
}

void test_read_log::a_failed_insert_does_not_stop_the_others_data()
{
    add_steps();
}

void test_read_log::a_failed_insert_does_not_stop_the_others()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);

    ios_uid_case test;
    widen_tables(test.results);
    for (const QString &table : {u"devices"_s, u"paired_devices"_s})
        test.results.execute(u"CREATE TRIGGER no_"_s + table + u" BEFORE INSERT ON "_s + table
                             + u" WHEN NEW.device_name = 'two' BEGIN SELECT RAISE(FAIL, 'not this one'); END"_s);
    test.write_log(log_text);
    (test.extractor.*step)();
    QCOMPARE(row_count(test), 2);

    const QStringList messages = test.debug_log.take_messages();
    QCOMPARE(messages.size(), 5);
    QCOMPARE(messages.first(3),
             of_function(name, {u" start"_s, u" query insert file------FAILED------"_s + test.results.path(),
                                u"not this one Unable to fetch row"_s}));
    QCOMPARE(messages.last(), name + u":  end"_s);
}

void test_read_log::cancelled_before_data()
{
    add_steps();
}

void test_read_log::cancelled_before()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);

    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log_text);
    test.extractor.ios_uid_cancel_extraction();
    (test.extractor.*step)();
    QCOMPARE(test.debug_log.take_messages(), of_function(name, {u" start"_s}));
    QCOMPARE(row_count(test), 0);

    // A log without a line has nothing to be cancelled.
    test.write_log({});
    (test.extractor.*step)();
    QCOMPARE(test.debug_log.take_messages(), of_function(name, {u" start"_s, u" end"_s}));

    test.write_log(log_text);
    test.extractor.ios_uid_set_essentials();
    (test.extractor.*step)();
    QCOMPARE(row_count(test), 3);
}

void test_read_log::cancelled_by_a_progress_signal_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<qint64>("rows");
    QTest::addColumn<bool>("reaches_the_end");

    // clang-format off
    QTest::newRow("with lines to come")     << QByteArray(log_text)                       << qint64(1) << false;
    QTest::newRow("with no match to come")  << QByteArray("1\nBLE device found: 2\n3")    << qint64(1) << false;
    QTest::newRow("in the last line")       << QByteArray("1\nBLE device found: 2\n")     << qint64(1) << true;
    QTest::newRow("in an unfinished line")  << QByteArray("1\nBLE device found: 2")       << qint64(1) << true;
    // clang-format on
}

void test_read_log::cancelled_by_a_progress_signal()
{
    QFETCH(QByteArray, log);
    QFETCH(qint64, rows);
    QFETCH(bool, reaches_the_end);

    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log);
    test.extractor.ios_uid_set_essential_for_kaldo_desk_extraction({u"devices"_s});
    connect(&test.extractor, &bluetooth_logs_ios_uid::signal_extracted_records_of_plugin_ios_uid, &test.extractor,
            &bluetooth_logs_ios_uid::ios_uid_cancel_extraction);
    slow_down_at(u" start"_s, [&test] { test.extractor.ios_uid_extract_artifacts(); });

    QStringList messages{u" start"_s};
    if (reaches_the_end)
        messages.append(u" end"_s);
    QCOMPARE(test.debug_log.take_messages(), of_function(available_name, messages));
    QCOMPARE(row_count(test), rows);
    QCOMPARE(test.signals_emitted, QStringList({u"records 1"_s, u"records 1"_s, u"tabs 1"_s, u"records 1"_s}));
}

void test_read_log::progress_within_a_step()
{
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log_text);
    test.extractor.ios_uid_set_record_count(100);
    slow_down_at(u" start"_s, [&test] { test.extractor.ios_uid_extract_artifacts(); });
    // More than a second has passed at the first row of each step, and starts anew there.
    QCOMPARE(test.signals_emitted, QStringList({u"records 101"_s, u"records 103"_s, u"tabs 1"_s, u"records 104"_s,
                                                u"records 106"_s, u"tabs 2"_s, u"records 106"_s}));
}

void test_read_log::rows_are_committed_together_and_labelled_one_by_one()
{
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log_text);
    test.extractor.ios_uid_set_essential_for_kaldo_desk_extraction({u"devices"_s});
    QList<qint64> rows_seen;
    connect(&test.extractor, &bluetooth_logs_ios_uid::signal_extracted_records_of_plugin_ios_uid, &test.extractor,
            [&](qint64) {
                rows_seen.append(row_count(test));
                plugin_static_function::set_source_count(9);
            });
    slow_down_at(u" start"_s, [&test] { test.extractor.ios_uid_extract_artifacts(); });
    QCOMPARE(rows_seen, QList<qint64>({0, 3, 3})); // the first signal comes between the rows
    QCOMPARE(test.results.quoted_rows(u"devices"_s, {u"source_count_name"_s}),
             QStringList({u"'Source3'"_s, u"'Source9'"_s, u"'Source9'"_s}));
}

void test_read_log::a_timer_that_never_started_reports_nothing()
{
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log_text);
    test.extractor.extract_available_devices();
    QCOMPARE(test.signals_emitted, QStringList());
    QCOMPARE(row_count(test), 3);
}

void test_read_log::connection_stays_closed_data()
{
    add_steps();
}

void test_read_log::connection_stays_closed()
{
    QFETCH(step_function, step);
    QFETCH(QString, name);

    ios_uid_case test;
    test.write_log(log_text);
    const QString connection = u"void "_s + name + u"()"_s;
    (test.extractor.*step)();
    QVERIFY(QSqlDatabase::contains(connection));
    QVERIFY(!QSqlDatabase::database(connection, false).isOpen());

    // The next run takes its place.
    widen_tables(test.results);
    (test.extractor.*step)();
    QCOMPARE(row_count(test), 3);
}

BLUETOOTH_LOGS_TEST(test_read_log, QApplication)

#include "test_read_log.moc"
