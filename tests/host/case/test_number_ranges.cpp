// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_sources.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <numeric>

using namespace Qt::StringLiterals;

/** Numbers of sources as a text, and back. */
class test_number_ranges : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void ranges_data();
    void ranges();
};

void test_number_ranges::ranges_data()
{
    QTest::addColumn<QList<int>>("numbers");
    QTest::addColumn<QString>("text");

    QList<int> many(5000);
    std::iota(many.begin(), many.end(), 1);
    // clang-format off
    QTest::newRow("none")     << QList<int>()              << QString();
    QTest::newRow("one")      << QList<int>{7}             << u"7"_s;
    QTest::newRow("two")      << QList<int>{1, 2}          << u"1-2"_s;
    QTest::newRow("gaps")     << QList<int>{1, 2, 3, 7, 9} << u"1-3,7,9"_s;
    QTest::newRow("many")     << many                      << u"1-5000"_s;
    // clang-format on
}

void test_number_ranges::ranges()
{
    QFETCH(QList<int>, numbers);
    QFETCH(QString, text);
    QCOMPARE(ranges_of(numbers), text);
    QCOMPARE(numbers_in(text), numbers);
}

BLUETOOTH_LOGS_TEST(test_number_ranges, QCoreApplication)

#include "test_number_ranges.moc"
