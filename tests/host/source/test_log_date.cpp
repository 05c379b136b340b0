// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/log_date.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

class test_log_date : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void dates_data();
    void dates();
};

void test_log_date::dates_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("date");

    // clang-format off
    QTest::newRow("log show")        << QByteArray("2024-05-17 12:11:05.123456+0200 0x1f Default x") << QByteArray("2024-05-17T12:11:05.123456+02:00");
    QTest::newRow("west")            << QByteArray("2024-05-17 12:11:05-0930 x")                     << QByteArray("2024-05-17T12:11:05-09:30");
    QTest::newRow("ISO 8601")        << QByteArray("2024-05-17T12:11:05Z x")                         << QByteArray("2024-05-17T12:11:05Z");
    QTest::newRow("zone apart")      << QByteArray("2024-05-17 12:11:05.5 +02:00")                   << QByteArray("2024-05-17T12:11:05.5+02:00");
    QTest::newRow("leap day")        << QByteArray("2024-02-29 00:00:00+0000")                       << QByteArray("2024-02-29T00:00:00+00:00");
    QTest::newRow("no such day")     << QByteArray("2023-02-29 00:00:00+0000")                       << QByteArray();
    QTest::newRow("no such hour")    << QByteArray("2024-05-17 24:00:01+0000")                       << QByteArray();
    QTest::newRow("no such zone")    << QByteArray("2024-05-17 12:11:05+1500")                       << QByteArray();
    QTest::newRow("no zone")         << QByteArray("2024-05-17 12:11:05 +x")                         << QByteArray();
    QTest::newRow("zone goes on")    << QByteArray("2024-05-17 12:11:05+02001")                      << QByteArray();
    QTest::newRow("system log")      << QByteArray("May 17 12:11:05 phone x")                        << QByteArray();
    QTest::newRow("not in front")    << QByteArray(" 2024-05-17 12:11:05+0200")                      << QByteArray();
    QTest::newRow("empty")           << QByteArray("")                                               << QByteArray();
    // clang-format on
}

void test_log_date::dates()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, date);
    QCOMPARE(date_with_zone(line), date);
}

BLUETOOTH_LOGS_TEST(test_log_date, QCoreApplication)

#include "test_log_date.moc"
