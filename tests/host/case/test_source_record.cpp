// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/source_record.h"

#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// No value is that of another member or what a member has by itself: none can be left out or taken for another.
constexpr const char *whole_record = R"({
    "number": 11, "name": "laptop", "path": "/evidence", "type": "iOS_backup", "driven_as": "macOS",
    "container": {"kind": "backup"}, "status": "out of memory", "exit_code": 12,
    "messages": [{"weight": "note", "text": "t1"}, {"weight": "warning", "text": "t2"},
                 {"weight": "error", "text": "t3"}],
    "started": "s1", "finished": "s2", "log_zone": "Europe/Berlin",
    "rows": {"devices": {"found": 13, "announced": 14, "stored": 15, "devices": 16},
             "paired_devices": {"found": null, "announced": null, "stored": null}},
    "evidence": [{"path": "a.db", "state": "present", "reason": "r", "before": null, "after": null,
                  "copy_sha256": "s3", "origin": null}],
    "listing": {"before": ["l1"], "after": ["l2"]}, "wal": {"devices": {"added": 17}},
    "confinement": {"landlock": 18, "seccomp": true}, "host_devices": 19, "salvaged": {"devices": 20},
    "unparsed_lines": {"devices": 21}, "result": {"path": "p1", "sha256": "s4"},
    "files": [{"path": "p2", "size": 22, "sha256": "s5"}]
})";

QJsonObject json_of(const char *text)
{
    return QJsonDocument::fromJson(text).object();
}

/** The same with another member. */
QJsonObject with(QLatin1StringView member, const QJsonValue &value)
{
    QJsonObject json = json_of(whole_record);
    json.insert(member, value);
    return json;
}

} // namespace

Q_DECLARE_METATYPE(source_status)

/** What the case keeps of a source. */
class test_source_record : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void every_member();
    void members_that_are_not_known_data();
    void members_that_are_not_known();
    void statuses_data();
    void statuses();
    void other_status();
    void sightings_data();
    void sightings();
};

void test_source_record::every_member()
{
    QCOMPARE(source_record::from_json(json_of(whole_record)).to_json(), json_of(whole_record));
}

void test_source_record::members_that_are_not_known_data()
{
    QTest::addColumn<QString>("member");

    for (const char *member : {"container", "exit_code", "started", "finished", "log_zone", "confinement", "result"})
        QTest::newRow(member) << QString::fromLatin1(member);
}

void test_source_record::members_that_are_not_known()
{
    QFETCH(const QString, member);
    const QJsonObject json = with(QLatin1StringView(member.toLatin1()), QJsonValue());
    QCOMPARE(source_record::from_json(json).to_json(), json);
}

void test_source_record::statuses_data()
{
    QTest::addColumn<source_status>("status");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("is_complete"); // its rows are final

    using enum source_status;
    // clang-format off
    QTest::newRow("running")          << running          << u"running"_s          << false;
    QTest::newRow("done")             << done             << u"done"_s             << true;
    QTest::newRow("partial")          << partial          << u"partial"_s          << true;
    QTest::newRow("failed")           << failed           << u"failed"_s           << false;
    QTest::newRow("crashed")          << crashed          << u"crashed"_s          << false;
    QTest::newRow("timed out")        << timed_out        << u"timed out"_s        << false;
    QTest::newRow("out of memory")    << out_of_memory    << u"out of memory"_s    << false;
    QTest::newRow("interrupted")      << interrupted      << u"interrupted"_s      << false;
    QTest::newRow("evidence changed") << evidence_changed << u"evidence changed"_s << true;
    QTest::newRow("not run")          << not_run          << u"not run"_s          << false;
    // clang-format on
}

void test_source_record::statuses()
{
    QFETCH(const source_status, status);
    QFETCH(const QString, name);
    QCOMPARE(status_name(status), name);
    QCOMPARE(int(status_named(name).value_or(source_status::running)), int(status));
    QTEST(is_complete(status), "is_complete");
}

void test_source_record::other_status()
{
    QVERIFY(!status_named(u"well"_s));
    QCOMPARE(status_name(source_record::from_json(with("status"_L1, u"well"_s)).status), u"failed"_s);
}

void test_source_record::sightings_data()
{
    QTest::addColumn<qint64>("stored");
    QTest::addColumn<qint64>("devices"); // -1: not known
    QTest::addColumn<QString>("text");

    QTest::newRow("many") << qint64(1200) << qint64(1001) << u"1,200 sightings of 1,001 devices"_s;
    QTest::newRow("one") << qint64(1) << qint64(1) << u"1 sighting of 1 device"_s;
    QTest::newRow("none") << qint64(0) << qint64(0) << u"0 sightings of 0 devices"_s;
    QTest::newRow("rows that are devices") << qint64(7) << qint64(-1) << QString();
}

void test_source_record::sightings()
{
    QFETCH(const qint64, stored);
    QFETCH(const qint64, devices);
    table_rows rows{u"devices"_s, {}, {}, stored};
    if (devices >= 0)
        rows.devices = devices;
    QTEST(sightings_text(rows), "text");
}

BLUETOOTH_LOGS_TEST(test_source_record, QCoreApplication)

#include "test_source_record.moc"
