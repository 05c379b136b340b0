// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/json_text.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

class test_escaped_json : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
};

void test_escaped_json::text_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("json");

    // clang-format off
    QTest::newRow("plain")         << u"case"_s            << QByteArray("{\"t\":\"case\"}");
    QTest::newRow("quotes")        << u"a\"b\\"_s          << QByteArray("{\"t\":\"a\\\"b\\\\\"}");
    QTest::newRow("other scripts") << u"Zoë 客厅 🎧"_s     << QByteArray("{\"t\":\"Zoë 客厅 🎧\"}");
    QTest::newRow("direction")     << u"x\u202Egpj"_s      << QByteArray("{\"t\":\"x\\u202egpj\"}");
    QTest::newRow("isolate")       << u"\u2066x\u2069"_s   << QByteArray("{\"t\":\"\\u2066x\\u2069\"}");
    QTest::newRow("C1")            << u"\u009b2J"_s        << QByteArray("{\"t\":\"\\u009b2J\"}");
    QTest::newRow("line")          << u"a\u2028b"_s        << QByteArray("{\"t\":\"a\\u2028b\"}");
    QTest::newRow("delete")        << u"a\u007fb"_s        << QByteArray("{\"t\":\"a\\u007fb\"}");
    // clang-format on
}

void test_escaped_json::text()
{
    QFETCH(QString, value);
    QFETCH(QByteArray, json);
    QByteArray escaped;
    append_escaped_json(escaped, QJsonDocument(QJsonObject{{u"t"_s, value}}).toJson(QJsonDocument::Compact));
    QCOMPARE(escaped, json);
    QCOMPARE(QJsonDocument::fromJson(escaped).object().value("t"_L1).toString(), value);
}

BLUETOOTH_LOGS_TEST(test_escaped_json, QCoreApplication)

#include "test_escaped_json.moc"
