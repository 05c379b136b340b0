// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/time_left.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

class test_time_left : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void nothing_is_known_at_first();
    void estimate_follows_the_work();
    void what_was_shown_never_grows();
};

void test_time_left::nothing_is_known_at_first()
{
    time_left left;
    QVERIFY(!left.seconds(5000, 0));
}

void test_time_left::estimate_follows_the_work()
{
    time_left left;
    QCOMPARE(left.seconds(10000, 0.25).value_or(-1), 30);
    QCOMPARE(left.seconds(20000, 0.5).value_or(-1), 20);
    QCOMPARE(left.seconds(40000, 1).value_or(-1), 0);
}

void test_time_left::what_was_shown_never_grows()
{
    time_left left;
    QCOMPARE(left.seconds(10000, 0.5).value_or(-1), 10);
    QCOMPARE(left.seconds(60000, 0.5).value_or(-1), 10);
    QCOMPARE(left.seconds(61000, 0).value_or(-1), 10);
    QCOMPARE(left.seconds(62000, 0.9).value_or(-1), 6);
}

BLUETOOTH_LOGS_TEST(test_time_left, QCoreApplication)

#include "test_time_left.moc"
