// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_outcome.h"

#include "host/source/macos_databases.h"
#include "tests/support/strict_test.h"

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
    report.is_extracted = true;
    report.log_has_its_end = true;
    report.log_sha256 = u"log"_s;
    report.announced = {{u"devices"_s, 5}, {u"paired_devices"_s, 2}};
    inspection found;
    for (const macos_database *database : macos_databases)
        found.evidence.files.append(whole_file(QString(macos_database_folder) + database->file_name));
    report.looked = found.evidence;
    found.rows = {{u"devices"_s, 5, {}, 5}, {u"paired_devices"_s, 2, {}, 2}};
    found.result_sha256 = u"cd"_s;
    found.log.sha256 = u"log"_s;
    report.inspected = found;
    return report;
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
};

void test_source_outcome::verdict_data()
{
    QTest::addColumn<deviation>("deviate");
    QTest::addColumn<outcome_code>("code");
    QTest::addColumn<source_status>("status");
    QTest::addColumn<QStringList>("messages");

    const QString lost =
        u"the plug-in's log, plugin.log, does not hold all that the plug-in wrote into it: failures may be missing there"_s;
    const auto rows = [](const QString &table, const QString &found, const QString &announced, const QString &stored) {
        return QString(
            u"the rows of the table %1 do not agree: %2 found in the evidence, %3 announced by the plug-in, %4 stored in the result"_s
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
        << deviation([](source_request &, worker_report &report) { report.log_has_its_end = false; })
        << outcome_code::partial << partial << QStringList{u"the plug-in's log has no line that ends it: the plug-in stopped early"_s};
    QTest::newRow("failures in the log")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.failures = {{u"a row could not be written: x"_s, 3, true}, {u"y"_s, 1, false}}; })
        << outcome_code::partial << partial << QStringList{u"a row could not be written: x (3 times)"_s, u"y"_s};
    QTest::newRow("rows that cannot be counted")
        << deviation([](source_request &, worker_report &report) { report.inspected->problems = {u"the rows of x cannot be counted: y"_s}; })
        << outcome_code::partial << partial << QStringList{u"the rows of x cannot be counted: y"_s};
    QTest::newRow("rows that cannot be counted, and all else agrees")
        << deviation([](source_request &, worker_report &report) { report.inspected->problems = {u"the rows of x cannot be counted: y"_s};
                                                                   report.inspected->rows[0] = {u"devices"_s, {}, {}, 0}; report.announced[u"devices"_s] = 0; })
        << outcome_code::partial << partial << QStringList{u"the rows of x cannot be counted: y"_s};
    QTest::newRow("crash")
        << deviation([](source_request &, worker_report &report) { report.end.signal = SIGSEGV; report.is_extracted = false; report.announced.clear(); report.inspected->rows[0].stored = 0; report.inspected->rows[1].stored = 0; })
        << outcome_code::partial << crashed << QStringList{u"crashed: the process that runs the plug-in ended with SIGSEGV"_s,
            rows(u"devices"_s, u"5"_s, u"an unknown number"_s, u"0"_s), rows(u"paired_devices"_s, u"2"_s, u"an unknown number"_s, u"0"_s)};
    QTest::newRow("crash after all was done")
        << deviation([](source_request &, worker_report &report) { report.end.signal = SIGABRT; })
        << outcome_code::partial << crashed << QStringList{u"crashed: the process that runs the plug-in ended with SIGABRT"_s};
    QTest::newRow("ends too early")
        << deviation([](source_request &, worker_report &report) { report.end.exit_code = 7; report.is_extracted = false; })
        << outcome_code::partial << failed << QStringList{u"the process that runs the plug-in ended before the extraction did, with exit code 7"_s};
    QTest::newRow("timed out")
        << deviation([](source_request &request, worker_report &report) { request.options.timeout = 9; report.end = {0, SIGKILL, true}; report.is_extracted = false; })
        << outcome_code::partial << timed_out << QStringList{u"timed out: the run took longer than the 9 seconds of --timeout"_s};
    QTest::newRow("out of memory")
        << deviation([](source_request &, worker_report &report) { report.is_out_of_memory = true; report.end.exit_code = 4; report.is_extracted = false; })
        << outcome_code::partial << out_of_memory << QStringList{u"out of memory: the run needs more than the 2048 MiB of --memory-limit"_s};
    QTest::newRow("out of memory, by the log")
        << deviation([](source_request &, worker_report &report) { report.inspected->log.is_out_of_memory = true; })
        << outcome_code::partial << out_of_memory << QStringList{u"out of memory: the run needs more than the 2048 MiB of --memory-limit"_s};
    QTest::newRow("worker gives up")
        << deviation([](source_request &, worker_report &report) { report.problems = {u"no room"_s}; report.is_extracted = false; })
        << outcome_code::partial << failed << QStringList{u"no room"_s};
    QTest::newRow("evidence was not looked at again")
        << deviation([](source_request &, worker_report &report) { report.inspected.reset(); report.end.signal = SIGKILL; report.is_extracted = false; })
        << outcome_code::partial << crashed << QStringList{u"crashed: the process that runs the plug-in ended with SIGKILL"_s, u"the evidence could not be looked at again after the run"_s};
    QTest::newRow("evidence changed")
        << deviation([](source_request &, worker_report &report) { report.inspected->changes = {u"x: it is gone"_s}; report.inspected->rows[0].stored = 4; })
        << outcome_code::evidence_changed << evidence_changed << QStringList{u"the evidence changed during the run: x: it is gone"_s, rows(u"devices"_s, u"5"_s, u"5"_s, u"4"_s)};
    QTest::newRow("live evidence changed")
        << deviation([](source_request &request, worker_report &report) { request.options.is_live = true; report.inspected->changes = {u"x: it is gone"_s}; })
        << outcome_code::done << done << QStringList{u"the live evidence changed during the run: x: it is gone"_s};
    QTest::newRow("one file unread")
        << deviation([](source_request &, worker_report &report) { auto &file = report.inspected->evidence.files[0]; file.state = evidence_file::presence::refused; file.reason = u"it is large"_s;
                                                                   report.inspected->rows[0] = {u"devices"_s, {}, {}, 0}; report.announced.remove(u"devices"_s); })
        << outcome_code::partial << partial << QStringList{other + u" was not read: it is large"_s};
    QTest::newRow("nothing readable")
        << deviation([](source_request &, worker_report &report) { for (auto &file : report.inspected->evidence.files) { file.state = evidence_file::presence::unreadable; file.reason = u"it is no SQLite database"_s; }
                                                                   report.inspected->rows = {{u"devices"_s, {}, {}, 0}, {u"paired_devices"_s, {}, {}, 0}}; report.announced.clear(); })
        << outcome_code::no_evidence << failed << QStringList{other + u" was not read: it is no SQLite database"_s, paired + u" was not read: it is no SQLite database"_s};
    QTest::newRow("absent")
        << deviation([](source_request &, worker_report &report) { report.inspected->evidence.files[1] = {}; report.inspected->evidence.files[1].path = QString(macos_database_folder) + paired_devices_database.file_name;
                                                                   report.inspected->rows[1] = {u"paired_devices"_s, 0, {}, 0}; report.announced[u"paired_devices"_s] = 0; })
        << outcome_code::done << done << QStringList{u"the source holds no database for the table paired_devices"_s};
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
    const source_outcome outcome = judge_source(request, {}, report, false);
    QCOMPARE(outcome.record.messages, messages);
    QCOMPARE(outcome.code(), code);
    QCOMPARE(status_name(outcome.record.status), status_name(status));
    QCOMPARE(outcome.messages.size(), messages.size());
}

void test_source_outcome::interruption_counts_before_everything_but_a_change()
{
    worker_report report = good_report();
    report.end.signal = SIGINT;
    report.is_extracted = false;
    report.inspected->rows[0].stored = 0;
    const source_outcome interrupted = judge_source(macos_request(), {}, report, true);
    QCOMPARE(interrupted.record.messages, QStringList{u"interrupted: the result is incomplete"_s});
    QCOMPARE(interrupted.code(), outcome_code::interrupted);
    QCOMPARE(interrupted.record.status, source_status::interrupted);

    report.inspected->changes = {u"x: it is gone"_s};
    const source_outcome changed = judge_source(macos_request(), {}, report, true);
    QCOMPARE(changed.code(), outcome_code::evidence_changed);
}

void test_source_outcome::record_holds_all_that_is_known()
{
    source_record before;
    before.number = 3;
    before.name = u"laptop"_s;
    before.started = u"then"_s;
    source_request request = macos_request();
    request.number = 3;
    const source_outcome outcome = judge_source(request, before, good_report(), false);
    QCOMPARE(outcome.record.number, 3);
    QCOMPARE(outcome.record.name, u"laptop"_s);
    QCOMPARE(outcome.record.started, u"then"_s);
    QCOMPARE(outcome.record.result_path, u"Source3/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    QCOMPARE(outcome.record.result_sha256, u"cd"_s);
    QCOMPARE(outcome.record.evidence.files.size(), 2);
    // As it was written, so it is read.
    const source_record read = source_record::from_json(outcome.record.to_json());
    QCOMPARE(read.to_json(), outcome.record.to_json());
}

void test_source_outcome::later_failure()
{
    source_outcome outcome = judge_source(macos_request(), {}, good_report(), false);
    outcome.fail(u"too late"_s);
    QCOMPARE(outcome.code(), outcome_code::partial);
    QCOMPARE(outcome.record.status, source_status::partial);
    QCOMPARE(outcome.record.messages, QStringList{u"too late"_s});

    worker_report changed = good_report();
    changed.inspected->changes = {u"x: it is gone"_s};
    outcome = judge_source(macos_request(), {}, changed, false);
    outcome.fail(u"too late"_s);
    QCOMPARE(outcome.code(), outcome_code::evidence_changed);
    QCOMPARE(outcome.record.status, source_status::evidence_changed);
}

QTEST_GUILESS_MAIN(test_source_outcome)

#include "test_source_outcome.moc"
