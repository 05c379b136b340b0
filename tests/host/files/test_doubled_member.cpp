// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/doubled_member.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class test_doubled_member : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void members_data();
    void members();
    void a_file_with_one_is_refused();
};

void test_doubled_member::members_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("doubled"); // null: none

    // clang-format off
    QTest::newRow("none")                 << QByteArray(R"({"a": 1, "b": {"a": 2}, "c": [{"a": 1}, {"a": 1}]})") << QString();
    QTest::newRow("at the top")           << QByteArray(R"({"a": 1, "b": 2, "a" : 1})")        << u"a"_s;
    QTest::newRow("deep inside")          << QByteArray(R"({"x": [[{"k": {}, "k": {}}]]})")    << u"k"_s;
    QTest::newRow("after an inner one")   << QByteArray(R"({"a": {"b": 1}, "a": 2})")          << u"a"_s;
    QTest::newRow("behind an escape")     << QByteArray(R"({"path": 1, "p\u0061th": 2})")      << u"path"_s;
    QTest::newRow("quotes in the name")   << QByteArray(R"({"a\"": 1, "a\"": 2})")             << u"a\""_s;
    QTest::newRow("values are no names")  << QByteArray(R"({"a": "a", "b": "a", "c": "{\"a\": 1, \"a\": 2}"})") << QString();
    QTest::newRow("texts of a list")      << QByteArray(R"(["a", "a"])")                       << QString();
    QTest::newRow("empty names")          << QByteArray(R"({"": 1, "": 2})")                   << u""_s;
    QTest::newRow("other letter case")    << QByteArray(R"({"a": 1, "A": 2})")                 << QString();
    QTest::newRow("colon on its own line") << QByteArray("{\"a\"\n\t:1,\"a\"\r\n:2}")          << u"a"_s;
    QTest::newRow("no JSON: open text")   << QByteArray(R"({"a)")                              << QString();
    QTest::newRow("no JSON: open escape") << QByteArray("{\"a\\")                              << QString();
    QTest::newRow("no JSON: closed early") << QByteArray("}}}\"a\":")                          << QString();
    QTest::newRow("nothing")              << QByteArray()                                      << QString();
    // clang-format on
}

void test_doubled_member::members()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, doubled);
    const std::optional<QString> found = doubled_member(json);
    QCOMPARE(found.has_value(), !doubled.isNull());
    QCOMPARE(found.value_or(QString()), doubled);
}

/** Records, lists of sources and reports' lists are read by this function. */
void test_doubled_member::a_file_with_one_is_refused()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"source.json"_s);
    write_file(path, R"({"status": "partial", "rows": {}, "status": "done"})");
    try {
        read_json_file(path);
        QFAIL("it was read");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), path + u" gives the member \"status\" twice"_s);
    }
    write_file(path, R"({"status": "done"})");
    QCOMPARE(read_json_file(path).size(), 1);
}

BLUETOOTH_LOGS_TEST(test_doubled_member, QCoreApplication)

#include "test_doubled_member.moc"
