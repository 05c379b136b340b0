// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/worker_protocol.h"

#include "host/files/host_error.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// No value is that of another member or what a member has by itself: none can be left out or taken for another.
constexpr const char *whole_evidence = R"({
    "evidence": [
        {"path": "a.db", "state": "refused", "reason": "large",
         "before": {"size": 11, "modified": "m1", "changed": "c1", "sha256": "s1"},
         "after": {"size": 12, "modified": "m2", "changed": "c2", "sha256": "s2"},
         "copy_sha256": "s3", "origin": {"path": "stood there"}},
        {"path": "b.db", "state": "unreadable", "reason": null, "before": null, "after": null, "copy_sha256": null,
         "origin": null},
        {"path": "c.db", "state": "present", "reason": null, "before": null, "after": null, "copy_sha256": null,
         "origin": null},
        {"path": "d.db", "state": "absent", "reason": null, "before": null, "after": null, "copy_sha256": null,
         "origin": null}],
    "listing": {"before": ["l1", "l2"], "after": ["l3"]},
    "unparsed_lines": {"devices": 13}
})";

constexpr const char *whole_source = R"({
    "kind": "macOS", "type": "iOS_backup", "path": "/evidence", "root": "/evidence/root/", "log_file": "/evidence/log",
    "follow_links": true, "is_taken_out": true, "container": {"kind": "archive"}, "files_taken_out": ["one", "two"]
})";

constexpr const char *whole_options = R"({
    "tables": ["devices"], "engine_type": 21, "display_name": "shown", "timezone_offset": -3600, "suite_tables": true,
    "follow_links": true, "is_live": true, "is_confined": false, "is_verbose": true, "plugin_file": "/plugin.so",
    "memory_limit": 22, "timeout": 23, "max_database": 24, "max_log": 25, "skips_container_hash": true
})";

constexpr const char *whole_inspection = R"({
    "rows": {"devices": {"found": 31, "announced": 32, "stored": 33, "devices": 34},
             "paired_devices": {"found": null, "announced": null, "stored": null}},
    "wal": {"devices": {"added": 35}}, "host_devices": 36, "salvaged": {"devices": 37}, "changes": ["t1"],
    "problems": ["t2"], "differences": ["t3"], "warnings": ["t4"], "notes": ["t5"], "result_sha256": "s4",
    "log": {"failures": [{"text": "t6", "count": 38, "is_insert": true}], "other_failures": 39, "sha256": "s5",
            "is_out_of_memory": true},
    "is_out_of_memory": true
})";

QJsonObject json_of(const QByteArray &text)
{
    QJsonParseError error;
    const QJsonObject json = QJsonDocument::fromJson(text, &error).object();
    if (error.error != QJsonParseError::NoError)
        qFatal("no JSON: %s", qPrintable(error.errorString()));
    return json;
}

QJsonObject whole_order()
{
    return {{u"task"_s, u"settle"_s},
            {u"source"_s, json_of(whole_source)},
            {u"volume"_s, 41},
            {u"member"_s, u"in it"_s},
            {u"number"_s, 42},
            {u"name"_s, u"laptop"_s},
            {u"case"_s, u"/case"_s},
            {u"options"_s, json_of(whole_options)},
            {u"evidence"_s, json_of(whole_evidence)}};
}

QJsonObject inspection_with_evidence()
{
    QJsonObject json = json_of(whole_inspection);
    json.insert("evidence"_L1, json_of(whole_evidence));
    return json;
}

/** Only what was reported. */
QJsonObject account_of(const worker_report &report)
{
    QJsonObject json;
    if (report.is_loaded)
        json.insert("loaded"_L1, true);
    if (report.is_out_of_memory)
        json.insert("no memory"_L1, true);
    if (!report.confinement.isNull())
        json.insert("confinement"_L1, report.confinement);
    if (report.looked)
        json.insert("looked"_L1, report.looked->to_json());
    for (auto table = report.announced.cbegin(); table != report.announced.cend(); ++table)
        json.insert(table.key(), table.value());
    if (report.extracted)
        json.insert("log"_L1, QJsonArray{report.extracted->sha256, report.extracted->is_last});
    if (report.inspected)
        json.insert("inspected"_L1, report.inspected->to_json());
    if (!report.problems.isEmpty())
        json.insert("problems"_L1, QJsonArray::fromStringList(report.problems));
    if (report.problem_kind)
        json.insert("kind"_L1, int(*report.problem_kind));
    if (report.taken_out)
        json.insert("taken out"_L1, QJsonArray{source_to_json(report.taken_out->source),
                                               QJsonArray::fromStringList(report.taken_out->warnings),
                                               QJsonArray::fromStringList(report.taken_out->errors)});
    if (!report.survey.isEmpty())
        json.insert("survey"_L1, report.survey);
    if (report.last_count != 0)
        json.insert("count"_L1, report.last_count);
    return json;
}

} // namespace

Q_DECLARE_METATYPE(worker_event)

/** What is said on one side is understood on the other. */
class test_worker_protocol : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void tasks_data();
    void tasks();
    void events_data();
    void events();
    void first_confinement_counts();
    void problems_add_up();
};

void test_worker_protocol::order()
{
    const QByteArray line = worker_order::from_line(QJsonDocument(whole_order()).toJson()).to_line();
    QCOMPARE(json_of(line), whole_order());
    QCOMPARE(line.indexOf('\n'), line.size() - 1);
}

void test_worker_protocol::tasks_data()
{
    QTest::addColumn<int>("task");

    QTest::newRow("extract") << int(worker_order::task::extract);
    QTest::newRow("inspect") << int(worker_order::task::inspect);
    QTest::newRow("settle") << int(worker_order::task::settle);
    QTest::newRow("survey") << int(worker_order::task::survey);
}

void test_worker_protocol::tasks()
{
    QFETCH(const int, task);
    worker_order order;
    order.to_do = worker_order::task(task);
    QCOMPARE(int(worker_order::from_line(order.to_line()).to_do), task);
}

void test_worker_protocol::events_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<worker_event>("event");
    QTest::addColumn<QJsonObject>("account");

    using enum worker_event;
    const QJsonObject evidence = json_of(whole_evidence);
    const QJsonObject whole = inspection_with_evidence();
    const QJsonObject source = json_of(whole_source);
    const QJsonObject any{{u"landlock"_s, 3}};
    const taken_evidence taken{source_from_json(source), {u"odd"_s}, {u"faulty"_s}};
    // clang-format off
    QTest::newRow("loaded")    << loaded_line()                                                << loaded     << QJsonObject{{u"loaded"_s, true}};
    QTest::newRow("confined")  << confined_line(any)                                           << confined   << QJsonObject{{u"confinement"_s, any}};
    QTest::newRow("taken out") << taken_out_line(taken)                                        << taken_out  << QJsonObject{{u"taken out"_s, QJsonArray{source, QJsonArray{u"odd"_s}, QJsonArray{u"faulty"_s}}}};
    QTest::newRow("looked")    << looked_line(evidence_state::from_json(evidence))             << looked     << QJsonObject{{u"looked"_s, evidence}};
    QTest::newRow("hashed")    << hashed_line(qint64(1) << 40)                                 << hashed     << QJsonObject{{u"count"_s, qint64(1) << 40}};
    QTest::newRow("read")      << read_line((qint64(1) << 40) + 1)                             << read       << QJsonObject{{u"count"_s, (qint64(1) << 40) + 1}};
    QTest::newRow("records")   << records_line(7)                                              << records    << QJsonObject{{u"count"_s, 7}};
    QTest::newRow("table")     << table_done_line(u"devices"_s, 8)                             << table_done << QJsonObject{{u"devices"_s, 8}};
    QTest::newRow("extracted") << extracted_line({u"s1"_s, true})                              << extracted  << QJsonObject{{u"log"_s, QJsonArray{u"s1"_s, true}}};
    QTest::newRow("cut log")   << extracted_line({u"s1"_s, false})                             << extracted  << QJsonObject{{u"log"_s, QJsonArray{u"s1"_s, false}}};
    QTest::newRow("inspected") << inspected_line(inspection::from_json(whole))                 << inspected  << QJsonObject{{u"inspected"_s, whole}};
    QTest::newRow("problem")   << problem_line(host_error(error_kind::refused, u"no"_s))       << problem    << QJsonObject{{u"problems"_s, QJsonArray{u"no"_s}}, {u"kind"_s, int(error_kind::refused)}};
    QTest::newRow("no memory") << no_memory_line.toByteArray()                                 << no_memory  << QJsonObject{{u"no memory"_s, true}};
    QTest::newRow("survey")    << surveyed_line(any)                                           << surveyed   << QJsonObject{{u"survey"_s, any}};
    QTest::newRow("other")     << QByteArray("{\"event\":\"none\",\"count\":3}\n")             << unknown    << QJsonObject();
    QTest::newRow("no JSON")   << QByteArray("from a library\n")                               << unknown    << QJsonObject();
    // clang-format on
}

void test_worker_protocol::events()
{
    QFETCH(const QByteArray, line);
    QFETCH(const worker_event, event);
    QFETCH(const QJsonObject, account);
    worker_report report;
    QCOMPARE(int(report.take(line)), int(event));
    QCOMPARE(account_of(report), account);
    QCOMPARE(line.indexOf('\n'), line.size() - 1); // each is one line
}

/** Of the process that ran the plug-in; one that only looks comes later. */
void test_worker_protocol::first_confinement_counts()
{
    worker_report report;
    report.take(confined_line({{u"landlock"_s, 3}}));
    report.take(confined_line({{u"landlock"_s, 4}}));
    QCOMPARE(report.confinement, QJsonObject({{u"landlock"_s, 3}}));
}

void test_worker_protocol::problems_add_up()
{
    worker_report report;
    report.take(problem_line(host_error(error_kind::refused, u"first"_s)));
    report.take(problem_line(host_error(error_kind::not_found, u"second"_s)));
    QCOMPARE(report.problems, QStringList({u"first"_s, u"second"_s}));
    QVERIFY(report.problem_kind == error_kind::not_found);
}

BLUETOOTH_LOGS_TEST(test_worker_protocol, QCoreApplication)

#include "test_worker_protocol.moc"
