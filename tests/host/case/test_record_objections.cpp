// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/record_objections.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

/** What gives a record away that this program did not write. */
class test_record_objections : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void record_data();
    void record();
    void codes();
    void sources_data();
    void sources();
};

void test_record_objections::record_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("objection");

    const auto outside = [](const QString &path) {
        return QString(u"the path "_s + path + u" leads out of the source's folder"_s);
    };
    // clang-format off
    QTest::newRow("plain")            << R"({"number": 4, "status": "done", "exit_code": 0})"_ba << QString();
    QTest::newRow("still running")    << R"({"number": 4, "status": "running", "exit_code": null})"_ba << QString();
    QTest::newRow("another number")   << R"({"number": 5, "status": "done"})"_ba            << u"its number is not 4"_s;
    QTest::newRow("number as text")   << R"({"number": "4", "status": "done"})"_ba          << u"its number is not 4"_s;
    QTest::newRow("no status")        << R"({"number": 4})"_ba                              << u"there is no status \"\""_s;
    QTest::newRow("status unknown")   << R"({"number": 4, "status": "Done"})"_ba            << u"there is no status \"Done\""_s;
    QTest::newRow("code unknown")     << R"({"number": 4, "status": "done", "exit_code": 2})"_ba << u"no run ends with the exit code 2"_s;
    QTest::newRow("code as text")     << R"({"number": 4, "status": "done", "exit_code": "0"})"_ba << u"no run ends with the exit code 0"_s;
    QTest::newRow("result")           << R"({"number": 4, "status": "done", "result": {"path": "Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"}})"_ba << QString();
    QTest::newRow("another's result") << R"({"number": 4, "status": "done", "result": {"path": "Source5/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"}})"_ba << outside(u"Source5/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    QTest::newRow("result elsewhere") << R"({"number": 4, "status": "done", "result": {"path": "/etc/passwd"}})"_ba << outside(u"/etc/passwd"_s);
    QTest::newRow("evidence")         << R"({"number": 4, "status": "done", "evidence": [{"path": "a/b..c"}]})"_ba << QString();
    QTest::newRow("evidence upwards") << R"({"number": 4, "status": "done", "evidence": [{"path": "a"}, {"path": "a/../../b"}]})"_ba << outside(u"a/../../b"_s);
    QTest::newRow("evidence, root")   << R"({"number": 4, "status": "done", "evidence": [{"path": "/b"}]})"_ba << outside(u"/b"_s);
    QTest::newRow("evidence, none")   << R"({"number": 4, "status": "done", "evidence": [{"path": ""}]})"_ba << outside(QString());
    QTest::newRow("files")            << R"({"number": 4, "status": "done", "files": [{"path": "Source4/plugin.log"}]})"_ba << QString();
    QTest::newRow("files upwards")    << R"({"number": 4, "status": "done", "files": [{"path": "Source4/../manifest.json"}]})"_ba << outside(u"Source4/../manifest.json"_s);
    QTest::newRow("another's files")  << R"({"number": 4, "status": "done", "files": [{"path": "Source42/plugin.log"}]})"_ba << outside(u"Source42/plugin.log"_s);
    // clang-format on
}

void test_record_objections::record()
{
    QFETCH(const QByteArray, json);
    QFETCH(const QString, objection);
    const QJsonDocument document = QJsonDocument::fromJson(json);
    QVERIFY(document.isObject());
    QCOMPARE(objection_to_record(document.object(), 4), objection);
}

void test_record_objections::codes()
{
    QList<int> known;
    for (int code = -1; code <= 256; ++code) {
        if (objection_to_record({{u"number"_s, 4}, {u"status"_s, u"done"_s}, {u"exit_code"_s, code}}, 4).isEmpty())
            known.append(code);
    }
    QCOMPARE(known, QList<int>({0, 1, 3, 4, 5, 130}));
}

void test_record_objections::sources_data()
{
    QTest::addColumn<QByteArray>("sources");
    QTest::addColumn<QString>("objection");

    const QByteArray one = R"({"number": 1, "status": "done"})";
    const QByteArray two = R"({"number": 2, "status": "done"})";
    // clang-format off
    QTest::newRow("both")            << one + ',' + two << QString();
    QTest::newRow("none")            << ""_ba           << u"it names no source"_s;
    QTest::newRow("one is missing")  << one             << u"its sources are not those that it lists, 1-2"_s;
    QTest::newRow("out of order")    << two + ',' + one << u"source 1 is there twice, or out of order"_s;
    QTest::newRow("twice")           << one + ',' + one << u"source 1 is there twice, or out of order"_s;
    QTest::newRow("without a number") << R"({"status": "done"})"_ba << u"Source-1: it has no number"_s;
    QTest::newRow("of no status")    << one + R"(,{"number": 2, "status": "x"})" << u"Source2: there is no status \"x\""_s;
    // clang-format on
}

void test_record_objections::sources()
{
    QFETCH(const QByteArray, sources);
    QFETCH(const QString, objection);
    const QJsonDocument manifest = QJsonDocument::fromJson(R"({"case_sources": {"numbers": "1-2"}, "sources": [)"
                                                           + sources + "]}");
    QVERIFY(manifest.isObject());
    QCOMPARE(objection_to_sources(manifest.object()), objection);
}

BLUETOOTH_LOGS_TEST(test_record_objections, QCoreApplication)
#include "test_record_objections.moc"
