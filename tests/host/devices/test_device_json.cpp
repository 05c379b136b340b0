// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/device_json.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDateTime>
#include <QTest>
#include <QVariantMap>

#include <limits>

using namespace Qt::StringLiterals;

/** Values of property lists and registries as JSON. */
class test_device_json : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
};

void test_device_json::values_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("json");

    const QDateTime date(QDate(2026, 1, 31), QTime(12, 0, 5), Qt::UTC);
    const QDateTime elsewhere(QDate(2026, 1, 31), QTime(12, 0, 5), Qt::OffsetFromUTC, 3600);
    // clang-format off
    QTest::newRow("nothing")     << QVariant()                                                  << QByteArray("null");
    QTest::newRow("true")        << QVariant(true)                                              << QByteArray("true");
    QTest::newRow("false")       << QVariant(false)                                             << QByteArray("false");
    QTest::newRow("int")         << QVariant(-7)                                                << QByteArray("-7");
    QTest::newRow("unsigned")    << QVariant(7U)                                                << QByteArray("7");
    QTest::newRow("least")       << QVariant(std::numeric_limits<qint64>::min())                << QByteArray("-9223372036854775808");
    QTest::newRow("largest")     << QVariant(std::numeric_limits<quint64>::max())               << QByteArray("18446744073709551615");
    QTest::newRow("real")        << QVariant(0.5)                                               << QByteArray("0.5");
    QTest::newRow("no number")   << QVariant(std::numeric_limits<double>::quiet_NaN())          << QByteArray(R"({"real":"nan"})");
    QTest::newRow("infinite")    << QVariant(-std::numeric_limits<double>::infinity())          << QByteArray(R"({"real":"-inf"})");
    QTest::newRow("text")        << QVariant(u"a\"b"_s)                                         << QByteArray(R"("a\"b")");
    QTest::newRow("date")        << QVariant(date)                                              << QByteArray(R"("2026-01-31T12:00:05Z")");
    QTest::newRow("other zone")  << QVariant(elsewhere)                                         << QByteArray(R"("2026-01-31T11:00:05Z")");
    QTest::newRow("fraction")    << QVariant(date.addMSecs(7))                                  << QByteArray(R"("2026-01-31T12:00:05.007Z")");
    QTest::newRow("no date")     << QVariant(QDateTime())                                       << QByteArray("null");
    QTest::newRow("data")        << QVariant(QByteArray("\0\xff", 2))                           << QByteArray(R"({"base64":"AP8="})");
    QTest::newRow("list")        << QVariant(QVariantList{1, u"a"_s, QVariant()})               << QByteArray(R"([1,"a",null])");
    QTest::newRow("texts")       << QVariant(QStringList{u"a"_s, u"b"_s})                       << QByteArray(R"(["a","b"])");
    QTest::newRow("empty list")  << QVariant(QVariantList())                                    << QByteArray("[]");
    QTest::newRow("map")         << QVariant(QVariantMap{{u"b"_s, 1}, {u"a\n"_s, QVariantMap()}}) << QByteArray(R"({"a\n":{},"b":1})");
    QTest::newRow("other kind")  << QVariant(QTime(1, 2))                                       << QByteArray("null");
    // clang-format on
}

void test_device_json::values()
{
    QFETCH(const QVariant, value);
    QByteArray json;
    append_json_variant(json, value);
    QTEST(json, "json");
}

BLUETOOTH_LOGS_TEST(test_device_json, QCoreApplication)

#include "test_device_json.moc"
