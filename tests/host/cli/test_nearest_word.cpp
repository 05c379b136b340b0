// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/nearest_word.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class test_nearest_word : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void nearest_data();
    void nearest();
};

void test_nearest_word::nearest_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("meant");

    // clang-format off
    QTest::newRow("letter missing")   << u"extrct"_s    << u"extract"_s;
    QTest::newRow("letter added")     << u"shoow"_s     << u"show"_s;
    QTest::newRow("letter wrong")     << u"semple"_s    << u"sample"_s;
    QTest::newRow("letters swapped")  << u"smaple"_s    << u"sample"_s;
    QTest::newRow("swapped in short") << u"shwo"_s      << u"show"_s;
    QTest::newRow("capitals")         << u"EXTRACT"_s   << u"extract"_s;
    QTest::newRow("missing capital")  << u"EXTRCT"_s    << u"extract"_s;
    QTest::newRow("beginning")        << u"ext"_s       << u"extract"_s;
    QTest::newRow("too short")        << u"ex"_s        << QString();
    QTest::newRow("something else")   << u"frobnicate"_s << QString();
    QTest::newRow("empty")            << QString()      << QString();
    // clang-format on
}

void test_nearest_word::nearest()
{
    QFETCH(QString, typed);
    QFETCH(QString, meant);

    QCOMPARE(nearest_word(typed, {u"sample"_s, u"extract"_s, u"show"_s}), meant);
}

BLUETOOTH_LOGS_TEST(test_nearest_word, QCoreApplication)

#include "test_nearest_word.moc"
