// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_outcome.h"

#include "host/case/outcome_code.h"
#include "host/source/macos_databases.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

/** One thing that went otherwise than in a run where all is well. */
using deviation = void (*)(source_request &request, worker_report &report);

source_request macos_request()
{
    source_request request;
    request.source.kind = &macos_kind;
    request.source.path = u"/evidence"_s;
    request.source.root = u"/evidence/"_s;
    request.case_directory = u"/case"_s;
    return request;
}

evidence_file whole_file(const QString &path)
{
    evidence_file file;
    file.path = path;
    file.state = evidence_file::presence::present;
    file.before = file_state{{}, 4096, u"m"_s, u"c"_s, u"ab"_s};
    file.after = file.before;
    file.copy_sha256 = u"ab"_s;
    return file;
}

worker_report good_report()
{
    worker_report report;
    report.is_loaded = true;
    report.extracted = plugin_log_end{u"log"_s, true};
    report.announced = {{u"devices"_s, 5}, {u"paired_devices"_s, 2}};
    inspection found;
    for (const macos_database *database : macos_databases)
        found.evidence.files.append(whole_file(path_in_source(*database)));
    report.looked = found.evidence;
    found.rows = {{u"devices"_s, 5, {}, 5}, {u"paired_devices"_s, 2, {}, 2}};
    found.result_sha256 = u"cd"_s;
    found.log.sha256 = u"log"_s;
    report.inspected = found;
    return report;
}

QStringList texts_of(const source_record &record)
{
    QStringList texts;
    for (const run_message &message : record.messages)
        texts.append(message.text);
    return texts;
}

/** As they are printed: "error: …". */
QStringList said(const source_record &record)
{
    QStringList texts;
    for (const run_message &message : record.messages)
        texts.append(weight_name(message.importance) + u": "_s + message.text);
    return texts;
}

/** The state of a file of the evidence that is there beside the databases. */
void add_file(worker_report &report, const QString &path, const QString &reason = {})
{
    evidence_file file = whole_file(path);
    file.reason = reason;
    report.inspected->evidence.files.append(file);
}

/** A source whose two tables hold @p rows rows each, all of them counted alike. */
void make_ios(source_request &request, worker_report &report, qint64 rows)
{
    request.source.kind = &ios_uid_kind;
    request.source.log_file = u"/evidence/system.log"_s;
    report.inspected->evidence.files = {whole_file(u"system.log"_s)};
    report.inspected->rows = {{u"devices"_s, {}, {}, rows}, {u"paired_devices"_s, {}, {}, rows}};
    report.announced = {{u"devices"_s, rows}, {u"paired_devices"_s, rows}};
}

/** Its tables are never announced. */
void make_windows(source_request &request, worker_report &report)
{
    request.source.kind = &winos_kind;
    report.inspected->evidence.files.clear();
    report.inspected->rows = {{u"devices"_s, 0, {}, 0}, {u"paired_devices"_s, 0, {}, 0}};
    report.announced.clear();
}

outcome_code code_of(const source_record &record)
{
    return outcome_code(record.exit_code.value_or(-1));
}

} // namespace

Q_DECLARE_METATYPE(deviation)
Q_DECLARE_METATYPE(outcome_code)

class test_source_outcome : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void verdict_data();
    void verdict();
    void interruption_counts_before_everything_but_a_change();
    void record_holds_all_that_is_known();
    void later_failure();
    void the_gravest_decides_and_stands_first();
    void placeholders_in_evidence_stay();
    void messages_of_older_records_are_notes();
};

void test_source_outcome::verdict_data()
{
    QTest::addColumn<deviation>("deviate");
    QTest::addColumn<outcome_code>("code");
    QTest::addColumn<source_status>("status");
    QTest::addColumn<QStringList>("messages");

    const QString lost =
        u"error: the plug-in's log, plugin.log, does not hold all that the plug-in wrote into it: failures may be missing there"_s;
    const auto rows = [](const QString &table, const QString &found, const QString &announced, const QString &stored) {
        return QString(
            u"error: the rows of the table %1 do not agree: %2 found in the evidence, %3 announced by the plug-in, %4 stored in the result"_s
                .arg(table, found, announced, stored));
    };
    const QString other = QString(macos_database_folder) + other_devices_database.file_name;
    const QString paired = QString(macos_database_folder) + paired_devices_database.file_name;
    using enum source_status;

    // clang-format off
    QTest::newRow("all is well")
        << deviation([](source_request &, worker_report &) {})
        << outcome_code::done << done << QStringList();
    QTest::newRow("one row less is stored")
        << deviation([](source_request &, worker_report &report) { report.inspected->rows[0].stored = 4; })
        << outcome_code::partial << partial << QStringList{rows(u"devices"_s, u"5"_s, u"5"_s, u"4"_s)};
    QTest::newRow("one row more is stored")
        << deviation([](source_request &, worker_report &report) { report.inspected->rows[1].stored = 3; })
        << outcome_code::partial << partial << QStringList{rows(u"paired_devices"_s, u"2"_s, u"2"_s, u"3"_s)};
    QTest::newRow("one row less is announced")
        << deviation([](source_request &, worker_report &report) { report.announced[u"devices"_s] = 4; })
        << outcome_code::partial << partial << QStringList{rows(u"devices"_s, u"5"_s, u"4"_s, u"5"_s)};
    QTest::newRow("one row more is found")
        << deviation([](source_request &, worker_report &report) { report.inspected->rows[0].found = 6; })
        << outcome_code::partial << partial << QStringList{rows(u"devices"_s, u"6"_s, u"5"_s, u"5"_s)};
    QTest::newRow("nothing is announced")
        << deviation([](source_request &, worker_report &report) { report.announced.remove(u"devices"_s); })
        << outcome_code::partial << partial << QStringList{rows(u"devices"_s, u"5"_s, u"an unknown number"_s, u"5"_s)};
    QTest::newRow("stored rows are unknown")
        << deviation([](source_request &, worker_report &report) { report.inspected->rows[0].stored.reset(); })
        << outcome_code::partial << partial << QStringList{rows(u"devices"_s, u"5"_s, u"5"_s, u"an unknown number"_s)};
    QTest::newRow("log of another content")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.sha256 = u"other"_s; })
        << outcome_code::partial << partial << QStringList{lost};
    QTest::newRow("log without its end")
        << deviation([](source_request &, worker_report &report) { report.extracted->is_last = false; })
        << outcome_code::partial << partial << QStringList{u"error: the plug-in's log has no line that ends it: the plug-in stopped early"_s};
    QTest::newRow("failures in the log")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.failures = {{u"a row could not be written: x"_s, 3, true}, {u"y"_s, 1, false}}; })
        << outcome_code::partial << partial << QStringList{u"warning: a row could not be written: x (3 times)"_s, u"warning: y"_s};
    QTest::newRow("more failures than are shown")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.failures = {{u"a"_s, 1, false}, {u"b"_s, 1, false}, {u"c"_s, 1, false}, {u"d"_s, 1, false}, {u"e"_s, 1, false}, {u"f"_s, 1, false}}; })
        << outcome_code::partial << partial << QStringList{u"warning: a"_s, u"warning: b"_s, u"warning: c"_s, u"warning: d"_s, u"warning: e"_s, u"warning: 1 more kinds of failure are in the plug-in's log"_s};
    QTest::newRow("rows that cannot be counted")
        << deviation([](source_request &, worker_report &report) { report.inspected->problems = {u"the rows of x cannot be counted: y"_s}; })
        << outcome_code::partial << partial << QStringList{u"error: the rows of x cannot be counted: y"_s};
    QTest::newRow("rows that cannot be counted, and all else agrees")
        << deviation([](source_request &, worker_report &report) { report.inspected->problems = {u"the rows of x cannot be counted: y"_s};
                                                                   report.inspected->rows[0] = {u"devices"_s, {}, {}, 0}; report.announced[u"devices"_s] = 0; })
        << outcome_code::partial << partial << QStringList{u"error: the rows of x cannot be counted: y"_s};
    QTest::newRow("crash")
        << deviation([](source_request &, worker_report &report) { report.end.signal = SIGSEGV; report.extracted.reset(); report.announced.clear(); report.inspected->rows[0].stored = 0; report.inspected->rows[1].stored = 0; })
        << outcome_code::partial << crashed << QStringList{u"error: crashed: the process that runs the plug-in ended with SIGSEGV"_s,
            rows(u"devices"_s, u"5"_s, u"an unknown number"_s, u"0"_s), rows(u"paired_devices"_s, u"2"_s, u"an unknown number"_s, u"0"_s)};
    QTest::newRow("crash after all was done")
        << deviation([](source_request &, worker_report &report) { report.end.signal = SIGABRT; })
        << outcome_code::partial << crashed << QStringList{u"error: crashed: the process that runs the plug-in ended with SIGABRT"_s};
    QTest::newRow("ends too early")
        << deviation([](source_request &, worker_report &report) { report.end.exit_code = 7; report.extracted.reset(); })
        << outcome_code::partial << failed << QStringList{u"error: the process that runs the plug-in ended before the extraction did, with exit code 7"_s};
    QTest::newRow("timed out")
        << deviation([](source_request &request, worker_report &report) { request.options.timeout = 9; report.end = {0, SIGKILL, true}; report.extracted.reset(); })
        << outcome_code::partial << timed_out << QStringList{u"error: timed out: the run took longer than the 9 seconds of --timeout"_s};
    QTest::newRow("out of memory")
        << deviation([](source_request &, worker_report &report) { report.is_out_of_memory = true; report.end.exit_code = 4; report.extracted.reset(); })
        << outcome_code::partial << out_of_memory << QStringList{u"error: out of memory: the run needs more than the 2048 MiB of --memory-limit"_s};
    QTest::newRow("out of memory, by the log")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.is_out_of_memory = true; })
        << outcome_code::partial << out_of_memory << QStringList{u"error: out of memory: the run needs more than the 2048 MiB of --memory-limit"_s};
    QTest::newRow("worker gives up")
        << deviation([](source_request &, worker_report &report) { report.problems = {u"no room"_s}; report.extracted.reset(); })
        << outcome_code::partial << failed << QStringList{u"error: no room"_s};
    QTest::newRow("evidence was not looked at again")
        << deviation([](source_request &, worker_report &report) { report.inspected.reset(); report.end.signal = SIGKILL; report.extracted.reset(); })
        << outcome_code::partial << crashed << QStringList{u"error: crashed: the process that runs the plug-in ended with SIGKILL"_s, u"error: the evidence could not be looked at again after the run"_s};
    QTest::newRow("evidence changed")
        << deviation([](source_request &, worker_report &report) { report.inspected->changes = {u"x: it is gone"_s}; report.inspected->rows[0].stored = 4; })
        << outcome_code::evidence_changed << evidence_changed << QStringList{u"error: the evidence changed during the run: x: it is gone"_s, rows(u"devices"_s, u"5"_s, u"5"_s, u"4"_s)};
    QTest::newRow("live evidence changed")
        << deviation([](source_request &request, worker_report &report) { request.options.is_live = true; report.inspected->changes = {u"x: it is gone"_s}; })
        << outcome_code::done << done << QStringList{u"note: the live evidence changed during the run: x: it is gone"_s};
    QTest::newRow("one file unread")
        << deviation([](source_request &, worker_report &report) { auto &file = report.inspected->evidence.files[0]; file.state = evidence_file::presence::refused; file.reason = u"it is large"_s;
                                                                   report.inspected->rows[0] = {u"devices"_s, {}, {}, 0}; report.announced.remove(u"devices"_s); })
        << outcome_code::partial << partial << QStringList{u"error: "_s + other + u" was not read: it is large"_s};
    QTest::newRow("nothing readable")
        << deviation([](source_request &, worker_report &report) { for (auto &file : report.inspected->evidence.files) { file.state = evidence_file::presence::unreadable; file.reason = u"it is no SQLite database"_s; }
                                                                   report.inspected->rows = {{u"devices"_s, {}, {}, 0}, {u"paired_devices"_s, {}, {}, 0}}; report.announced.clear(); })
        << outcome_code::no_evidence << failed << QStringList{u"error: "_s + other + u" was not read: it is no SQLite database"_s, u"error: "_s + paired + u" was not read: it is no SQLite database"_s};
    QTest::newRow("worker gives up after the extraction")
        << deviation([](source_request &, worker_report &report) { report.problems = {u"no room"_s}; })
        << outcome_code::partial << partial << QStringList{u"error: no room"_s};
    QTest::newRow("result without a hash")
        << deviation([](source_request &, worker_report &report) { report.inspected->result_sha256.clear(); })
        << outcome_code::partial << partial << QStringList{u"error: the result database could not be hashed: nothing proves later that it is unchanged"_s};
    QTest::newRow("evidence is gone")
        << deviation([](source_request &, worker_report &report) { for (auto &file : report.inspected->evidence.files) { file.state = evidence_file::presence::absent; file.before.reset(); file.after.reset(); }
                                                                   report.inspected->rows = {{u"devices"_s, 0, {}, 0}, {u"paired_devices"_s, 0, {}, 0}}; report.announced = {{u"devices"_s, 0}, {u"paired_devices"_s, 0}}; })
        << outcome_code::no_evidence << failed << QStringList{u"error: the evidence is gone: it was there when the run was planned"_s,
            u"note: the source holds no database for the table devices"_s, u"note: the source holds no database for the table paired_devices"_s};
    QTest::newRow("absent")
        << deviation([](source_request &, worker_report &report) { report.inspected->evidence.files[1] = {}; report.inspected->evidence.files[1].path = QString(macos_database_folder) + paired_devices_database.file_name;
                                                                   report.inspected->rows[1] = {u"paired_devices"_s, 0, {}, 0}; report.announced[u"paired_devices"_s] = 0; })
        << outcome_code::done << done << QStringList{u"note: the source holds no database for the table paired_devices"_s};
    QTest::newRow("a row less is announced, as many are found as stored, of a log")
        << deviation([](source_request &request, worker_report &report) { make_ios(request, report, 3); report.announced[u"devices"_s] = 2; })
        << outcome_code::partial << partial << QStringList{u"error: the rows of the table devices do not agree: 2 announced by the plug-in, 3 stored in the result"_s};
    QTest::newRow("failures in the log, and more than it keeps")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.failures = {{u"y"_s, 2, false}}; report.inspected->log.other_failures = 3; })
        << outcome_code::partial << partial << QStringList{u"warning: y (2 times)"_s, u"warning: 3 more kinds of failure are in the plug-in's log"_s};
    QTest::newRow("no columns for rows of a log")
        << deviation([](source_request &request, worker_report &report) { make_ios(request, report, 0); request.options.suite_tables = true;
                                                                          report.inspected->log.failures = {{u"a row could not be written: x"_s, 4, true}, {u"y"_s, 1, false}, {u"z"_s, 1, true}}; })
        << outcome_code::partial << partial << QStringList{u"warning: y"_s,
            u"warning: 5 rows found and not written: the suite's result tables have no columns for iOS rows; without --suite-tables the program adds them"_s};
    QTest::newRow("rows of a log that could not be written")
        << deviation([](source_request &request, worker_report &report) { make_ios(request, report, 1); report.inspected->log.failures = {{u"a row could not be written: x"_s, 1, true}}; })
        << outcome_code::partial << partial << QStringList{u"warning: a row could not be written: x"_s};
    QTest::newRow("crash while it is loaded")
        << deviation([](source_request &, worker_report &report) { report.is_loaded = false; report.end.signal = SIGKILL; report.extracted.reset(); report.announced = {{u"devices"_s, 5}, {u"paired_devices"_s, 2}}; })
        << outcome_code::partial << crashed << QStringList{u"error: crashed while the plug-in was loaded: the process that runs the plug-in ended with SIGKILL"_s};
    QTest::newRow("timed out while it is loaded")
        << deviation([](source_request &request, worker_report &report) { report.is_loaded = false; request.options.timeout = 9; report.end = {0, SIGKILL, true}; report.extracted.reset(); })
        << outcome_code::partial << timed_out << QStringList{u"error: timed out while the plug-in was loaded: the run took longer than the 9 seconds of --timeout"_s};
    QTest::newRow("out of memory while it is loaded")
        << deviation([](source_request &, worker_report &report) { report.is_loaded = false; report.is_out_of_memory = true; report.extracted.reset(); })
        << outcome_code::partial << out_of_memory << QStringList{u"error: out of memory while the plug-in was loaded: the run needs more than the 2048 MiB of --memory-limit"_s};
    QTest::newRow("out of memory, by a count")
        << deviation([](source_request &request, worker_report &report) { request.options.memory_limit = 99; report.inspected->is_out_of_memory = true; })
        << outcome_code::partial << out_of_memory << QStringList{u"error: out of memory: the run needs more than the 99 MiB of --memory-limit"_s};
    QTest::newRow("rows unlike the log")
        << deviation([](source_request &, worker_report &report) { report.inspected->differences = {u"1 row is unlike"_s}; })
        << outcome_code::partial << partial << QStringList{u"error: 1 row is unlike"_s};
    QTest::newRow("stopped plug-in has no log to compare")
        << deviation([](source_request &, worker_report &report) { report.problems = {u"no room"_s}; report.extracted.reset(); report.inspected->result_sha256.clear(); report.inspected->log.sha256 = u"other"_s; })
        << outcome_code::partial << failed << QStringList{u"error: no room"_s};
    QTest::newRow("faults and oddities of a container")
        << deviation([](source_request &, worker_report &report) { report.taken_out = taken_evidence{{}, {u"odd"_s}, {u"faulty"_s}}; })
        << outcome_code::partial << partial << QStringList{u"error: faulty"_s, u"warning: odd"_s};
    QTest::newRow("odd file")
        << deviation([](source_request &, worker_report &report) { add_file(report, u"x-wal"_s, u"it is no write-ahead log"_s); })
        << outcome_code::done << done << QStringList{u"warning: x-wal: it is no write-ahead log"_s};
    QTest::newRow("write-ahead log with rows")
        << deviation([](source_request &, worker_report &report) { report.inspected->wal = QJsonObject{{u"devices"_s, QJsonObject{{u"added"_s, 1}, {u"changed"_s, 2000}, {u"deleted"_s, 3}}}}; })
        << outcome_code::done << done << QStringList{u"warning: the plug-in's rows are those of the main file; the host compared it with its log: 1 added, 2,000 changed, 3 deleted"_s};
    QTest::newRow("write-ahead log without rows")
        << deviation([](source_request &, worker_report &report) { report.inspected->wal = QJsonObject{{u"devices"_s, QJsonObject{{u"added"_s, 0}, {u"changed"_s, 0}, {u"deleted"_s, 0}}}}; })
        << outcome_code::done << done << QStringList();
    QTest::newRow("rollback journal")
        << deviation([](source_request &, worker_report &report) { add_file(report, u"x-journal"_s); })
        << outcome_code::done << done << QStringList{u"warning: the rollback journal x-journal belongs to a change that was not finished: the result has the rows of the database as it stands, half changed"_s};
    QTest::newRow("rollback journal that is empty")
        << deviation([](source_request &, worker_report &report) { add_file(report, u"x-journal"_s); report.inspected->evidence.files.last().before->size = 0; })
        << outcome_code::done << done << QStringList();
    QTest::newRow("rollback journal that is not there")
        << deviation([](source_request &, worker_report &report) { add_file(report, u"x-journal"_s); report.inspected->evidence.files.last().state = evidence_file::presence::absent; })
        << outcome_code::done << done << QStringList();
    QTest::newRow("leftover")
        << deviation([](source_request &, worker_report &report) { add_file(report, u"x.corrupt"_s); })
        << outcome_code::done << done << QStringList{u"note: the leftover of a damaged database is not read: x.corrupt"_s};
    QTest::newRow("leftover that is gone")
        << deviation([](source_request &, worker_report &report) { add_file(report, u"x.corrupt"_s); report.inspected->evidence.files.last().state = evidence_file::presence::absent; })
        << outcome_code::done << done << QStringList();
    QTest::newRow("warnings and notes of the worker")
        << deviation([](source_request &, worker_report &report) { report.inspected->warnings = {u"odd"_s}; report.inspected->notes = {u"by the way"_s}; })
        << outcome_code::done << done << QStringList{u"warning: odd"_s, u"note: by the way"_s};
    QTest::newRow("lines without rows")
        << deviation([](source_request &request, worker_report &report) { make_ios(request, report, 1); report.inspected->evidence.unparsed_lines = QJsonObject{{u"devices"_s, 1}, {u"paired_devices"_s, 1200}}; })
        << outcome_code::done << done << QStringList{u"warning: 1 line with \"BLE device found:\" gave no row"_s, u"warning: 1,200 lines with \"active device:\" gave no row"_s};
    QTest::newRow("log without devices")
        << deviation([](source_request &request, worker_report &report) { make_ios(request, report, 0); })
        << outcome_code::done << done << QStringList{u"note: no line of the log tells of a Bluetooth device"_s};
    QTest::newRow("log with devices in one table")
        << deviation([](source_request &request, worker_report &report) { make_ios(request, report, 0); report.announced[u"devices"_s] = 1; report.inspected->rows[0].stored = 1; })
        << outcome_code::done << done << QStringList();
    QTest::newRow("table that was not asked for")
        << deviation([](source_request &request, worker_report &report) { request.options.tables = {u"devices"_s}; report.inspected->rows.removeLast(); report.inspected->evidence.files[1].state = evidence_file::presence::absent; })
        << outcome_code::done << done << QStringList();
    QTest::newRow("Windows without a registry")
        << deviation([](source_request &request, worker_report &report) { make_windows(request, report); })
        << outcome_code::done << done << QStringList{u"note: nothing of this Windows source is read: it holds no registry hive Windows/System32/config/SYSTEM that can be read"_s};
    QTest::newRow("Windows with a registry")
        << deviation([](source_request &request, worker_report &report) { make_windows(request, report); report.inspected->host_devices = 0; })
        << outcome_code::done << done << QStringList{u"note: the plug-in extracts nothing from Windows sources: the devices of its registry are in host_devices.jsonl"_s};
    // clang-format on
}

void test_source_outcome::verdict()
{
    QFETCH(deviation, deviate);
    QFETCH(outcome_code, code);
    QFETCH(source_status, status);
    QFETCH(QStringList, messages);
    source_request request = macos_request();
    worker_report report = good_report();
    deviate(request, report);
    const source_record record = judge_source(request, {}, report, false);
    QCOMPARE(said(record), messages);
    QCOMPARE(code_of(record), code);
    QCOMPARE(status_name(record.status), status_name(status));
}

void test_source_outcome::interruption_counts_before_everything_but_a_change()
{
    worker_report report = good_report();
    report.end.signal = SIGINT;
    report.extracted.reset();
    report.inspected->rows[0].stored = 0;
    const source_record interrupted = judge_source(macos_request(), {}, report, true);
    QCOMPARE(texts_of(interrupted), QStringList{u"interrupted: the result is incomplete"_s});
    QCOMPARE(code_of(interrupted), outcome_code::interrupted);
    QCOMPARE(interrupted.status, source_status::interrupted);

    report.inspected->changes = {u"x: it is gone"_s};
    const source_record changed = judge_source(macos_request(), {}, report, true);
    QCOMPARE(code_of(changed), outcome_code::evidence_changed);
}

void test_source_outcome::record_holds_all_that_is_known()
{
    source_record before;
    before.number = 3;
    before.name = u"laptop"_s;
    before.path = u"/evidence"_s;
    before.type = u"macOS"_s;
    before.driven_as = u"macOS"_s;
    before.container = QJsonObject{{u"kind"_s, u"archive"_s}};
    before.started = u"then"_s;
    before.finished = u"later"_s;
    before.log_zone = u"Europe/Berlin"_s;
    source_request request = macos_request();
    request.number = 3;
    worker_report report = good_report();
    report.confinement = QJsonObject{{u"landlock"_s, 3}};
    report.inspected->rows[0].devices = 4;
    report.inspected->wal = QJsonObject{};
    report.inspected->host_devices = 7;
    report.inspected->salvaged = QJsonObject{{u"devices"_s, 0}};
    const source_record record = judge_source(request, before, report, false);
    QCOMPARE(record.evidence.files.size(), 2);
    QJsonObject json = record.to_json();
    // As it was written, so it is read.
    QCOMPARE(source_record::from_json(json).to_json(), json);
    json.remove("evidence"_L1);
    json.remove("listing"_L1);
    const QByteArray expected = R"({"confinement":{"landlock":3},"container":{"kind":"archive"},"driven_as":"macOS",)"
                                R"("exit_code":0,"finished":"later","host_devices":7,"log_zone":"Europe/Berlin",)"
                                R"("messages":[],"name":"laptop","number":3,"path":"/evidence","result":{"path":)"
                                R"("Source3/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite","sha256":"cd"},)"
                                R"("rows":{"devices":{"announced":5,"devices":4,"found":5,"stored":5},)"
                                R"("paired_devices":{"announced":2,"found":2,"stored":2}},"salvaged":{"devices":0},)"
                                R"("started":"then","status":"done","type":"macOS","unparsed_lines":null,"wal":{}})";
    QCOMPARE(QJsonDocument(json).toJson(QJsonDocument::Compact), expected);
}

void test_source_outcome::later_failure()
{
    source_record record = judge_source(macos_request(), {}, good_report(), false);
    record.add_error(u"too late"_s);
    QCOMPARE(code_of(record), outcome_code::partial);
    QCOMPARE(record.status, source_status::partial);
    QCOMPARE(texts_of(record), QStringList{u"too late"_s});

    worker_report changed = good_report();
    changed.inspected->changes = {u"x: it is gone"_s};
    record = judge_source(macos_request(), {}, changed, false);
    record.add_error(u"too late"_s);
    QCOMPARE(code_of(record), outcome_code::evidence_changed);
    QCOMPARE(record.status, source_status::evidence_changed);
}

void test_source_outcome::the_gravest_decides_and_stands_first()
{
    worker_report report = good_report();
    report.inspected->warnings = {u"a warning"_s};
    report.inspected->log.failures = {{u"a failure"_s, 1, false}};
    report.inspected->problems = {u"a problem"_s};
    report.end.signal = SIGSEGV;
    const source_record record = judge_source(macos_request(), {}, report, false);
    QList<run_message::weight> weights;
    for (const run_message &message : record.messages)
        weights.append(message.importance);
    using enum run_message::weight;
    QCOMPARE(texts_of(record), QStringList({u"crashed: the process that runs the plug-in ended with SIGSEGV"_s,
                                            u"a failure"_s, u"a problem"_s, u"a warning"_s}));
    QCOMPARE(weights, QList({error, warning, error, warning}));
    QCOMPARE(record.status, source_status::crashed);
}

void test_source_outcome::placeholders_in_evidence_stay()
{
    worker_report report = good_report();
    report.inspected->evidence.files[0].reason = u"%1 %2 %%"_s;
    report.inspected->evidence.files[0].path = u"%2"_s;
    QCOMPARE(texts_of(judge_source(macos_request(), {}, report, false)), QStringList{u"%2: %1 %2 %%"_s});
}

void test_source_outcome::messages_of_older_records_are_notes()
{
    const source_record record = source_record::from_json(
        {{u"status"_s, u"done"_s},
         {u"messages"_s, QJsonArray{u"old"_s, QJsonObject{{u"weight"_s, u"warning"_s}, {u"text"_s, u"new"_s}}}}});
    QCOMPARE(record.messages.size(), 2);
    QCOMPARE(record.messages[0].text, u"old"_s);
    QCOMPARE(record.messages[0].importance, run_message::weight::note);
    QCOMPARE(record.messages[1].text, u"new"_s);
    QCOMPARE(record.messages[1].importance, run_message::weight::warning);
}

BLUETOOTH_LOGS_TEST(test_source_outcome, QCoreApplication)

#include "test_source_outcome.moc"
