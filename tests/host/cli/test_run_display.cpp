// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/run_display.h"

#include "host/case/wal_counts.h"
#include "tests/host/cli/stream_catcher.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

source_request request_of(int number, const QString &name = {})
{
    source_request request;
    request.number = number;
    request.name = name;
    request.source.kind = &macos_kind;
    request.source.path = u"/evidence/"_s + QString::number(number);
    request.source.root = request.source.path + u'/';
    request.case_directory = u"/case"_s;
    return request;
}

source_record record_of(const source_request &request)
{
    source_record record;
    record.number = request.number;
    record.type = u"macOS"_s;
    record.status = source_status::partial;
    record.exit_code = 4;
    record.rows = {{u"devices"_s, 1, 2, 1200, {}}, {u"paired_devices"_s, {}, {}, {}, {}}};
    record.result_path = u"Source1/result"_s;
    record.messages = {{run_message::weight::error, u"an error"_s},
                       {run_message::weight::warning, u"a warning"_s},
                       {run_message::weight::note, u"a note"_s}};
    return record;
}

using run_of_sources = void (*)(run_observer &observer);

void one_source(run_observer &observer)
{
    const source_request request = request_of(1, u"laptop"_s);
    observer.kept({u"/case/mine"_s});
    observer.source_started(request, {{run_message::weight::warning, u"before"_s}});
    observer.bytes_hashed(request, 10);
    observer.bytes_read(request, 20);
    observer.records_announced(request, 5, 1);
    observer.worker_said(request, u"unasked"_s);
    source_request verbose = request;
    verbose.options.is_verbose = true;
    observer.worker_said(verbose, u"a line\x1b of the log"_s);
    observer.cancelling(request);
    observer.source_finished(request, record_of(request));
    observer.case_finished();
}

/** A log, whose rows are sightings, and lists of devices beside it; then one that has nothing at all. */
void other_sources(run_observer &observer)
{
    source_request log = request_of(2);
    log.source.kind = &ios_uid_kind;
    source_record record = record_of(log);
    record.type = u"iOS_UID"_s;
    record.rows = {{u"devices"_s, {}, {}, 7, 1}};
    record.host_devices = 1012;
    record.messages.clear();
    observer.source_finished(log, record);
    source_record failed;
    failed.number = 3;
    failed.status = source_status::failed;
    observer.source_finished(request_of(3), failed);
}

void logs_of_databases(run_observer &observer)
{
    for (const int number : {1, 2}) {
        const source_request request = request_of(number, u"name"_s);
        observer.source_started(request, {{run_message::weight::note, u"the same for both"_s}});
        source_record record = record_of(request);
        record.rows[1].stored = 1;
        record.wal = QJsonObject{
            {u"devices"_s, QJsonObject{{u"added"_s, number}, {u"changed"_s, 10}, {u"deleted"_s, 0}}}};
        record.messages = {{run_message::weight::warning, wal_counts(record.wal).text()}};
        observer.source_finished(request, record);
    }
    observer.case_finished();
}

} // namespace

Q_DECLARE_METATYPE(run_of_sources)

/** What examiners and programs are told while a run goes on. */
class test_run_display : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void said_data();
    void said();
};

void test_run_display::said_data()
{
    QTest::addColumn<run_of_sources>("run");
    QTest::addColumn<int>("sources");
    QTest::addColumn<bool>("is_json");
    QTest::addColumn<bool>("is_quiet");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");

    const QString at_the_end = u"error: an error\nwarning: a warning\n"_s;
    const QString cancelling = u"note: finishing what is being written; again to stop at once\n"_s;
    const QString in_logs =
        u"warning: the plug-in's rows are those of the main file; the host compared it with its log: "_s;
    // clang-format off
    QTest::newRow("one source") << run_of_sources(one_source) << 1 << false << false
        << u"Source  laptop  macOS: /evidence/1\n"
            "Result  /case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite\n"
            "        devices             1,200 rows\n"
            "        paired_devices         unknown\n"_s
        << u"note: this is not of an earlier run and stays: /case/mine\nwarning: before\na line\\u{1b} of the log\n"_s + cancelling + at_the_end + u"note: a note\n"_s;
    QTest::newRow("quiet") << run_of_sources(one_source) << 1 << false << true
        << QString() << QString(u"warning: before\na line\\u{1b} of the log\n"_s + at_the_end);
    QTest::newRow("one of several") << run_of_sources(one_source) << 2 << false << false
        << u"Source1  partial  1,200 devices, unknown paired_devices  laptop  macOS: /evidence/1\n"_s
        << u"note: this is not of an earlier run and stays: /case/mine\nwarning: before\nSource1: a line\\u{1b} of the log\n"_s + cancelling
               + u"error: Source1: an error\nwarning: Source1: a warning\nnote: Source1: a note\n"_s;
    QTest::newRow("others of several") << run_of_sources(other_sources) << 3 << false << false
        << u"Source2  partial  7 sightings of 1 device, 1,012 host devices  iOS: /evidence/2\n"
            "Source3  failed  macOS: /evidence/3\n"_s
        << QString();
    QTest::newRow("another alone") << run_of_sources(other_sources) << 1 << false << false
        << u"Source  iOS: /evidence/2\n"
            "Result  /case/Source2/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite\n"
            "        devices                 7 rows, 7 sightings of 1 device\n"
            "Source2  partial  7 sightings of 1 device, 1,012 host devices\n"
            "Source  macOS: /evidence/3\n"_s
        << QString();
    QTest::newRow("logs of several") << run_of_sources(logs_of_databases) << 2 << false << false
        << u"Source1  partial  1,200 devices, 1 paired_devices  name  macOS: /evidence/1\n"
            "Source2  partial  1,200 devices, 1 paired_devices  name  macOS: /evidence/2\n"_s
        << QString(u"note: the same for both\n"_s + in_logs + u"3 added, 20 changed, 0 deleted\n"_s);
    QTest::newRow("for programs") << run_of_sources(one_source) << 2 << true << false
        << QString()
        << u"{\"event\":\"kept\",\"paths\":[\"/case/mine\"]}\n"
            "{\"event\":\"started\",\"path\":\"/evidence/1\",\"source\":1}\n"
            "{\"event\":\"message\",\"source\":1,\"text\":\"before\",\"weight\":\"warning\"}\n"
            "{\"bytes\":10,\"event\":\"hashed\",\"source\":1}\n"
            "{\"bytes\":20,\"event\":\"read\",\"source\":1}\n"
            "{\"event\":\"records\",\"records\":5,\"source\":1,\"tables_done\":1}\n"
            "{\"event\":\"log\",\"line\":\"a line\\u001b of the log\",\"source\":1}\n"
            "{\"event\":\"cancelling\"}\n"
            "{\"event\":\"message\",\"source\":1,\"text\":\"an error\",\"weight\":\"error\"}\n"
            "{\"event\":\"message\",\"source\":1,\"text\":\"a warning\",\"weight\":\"warning\"}\n"
            "{\"event\":\"message\",\"source\":1,\"text\":\"a note\",\"weight\":\"note\"}\n"
            "{\"event\":\"finished\",\"exit_code\":4,\"rows\":{\"devices\":{\"announced\":2,\"found\":1,\"stored\":1200},"
            "\"paired_devices\":{\"announced\":null,\"found\":null,\"stored\":null}},\"source\":1,\"sources\":2,"
            "\"sources_done\":1,\"status\":\"partial\"}\n"_s;
    // clang-format on
}

void test_run_display::said()
{
    QFETCH(const run_of_sources, run);
    QFETCH(const int, sources);
    QFETCH(const bool, is_json);
    QFETCH(const bool, is_quiet);
    stream_catcher output(stdout);
    stream_catcher errors(stderr);
    console out({.quiet = is_quiet, .has_events = is_json});
    const std::unique_ptr<run_observer> display = make_display({.source_count = sources, .is_json = is_json}, out);
    run(*display);
    const QString said_on_errors = errors.text();
    QTEST(output.text(), "output");
    QTEST(said_on_errors, "errors");
}

BLUETOOTH_LOGS_TEST(test_run_display, QCoreApplication)

#include "test_run_display.moc"
