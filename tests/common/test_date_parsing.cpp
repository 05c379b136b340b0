// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/date_parsing.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

/** Texts longer than any date do not reach the parser, even where it could read them. */
class test_date_parsing : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void pattern_data();
    void pattern();
    void iso_data();
    void iso();
};

void test_date_parsing::pattern_data()
{
    QTest::addColumn<qsizetype>("letters");
    QTest::addColumn<bool>("is_date");
    QTest::newRow("longest") << qsizetype(60) << true;
    QTest::newRow("longer") << qsizetype(61) << false;
}

void test_date_parsing::pattern()
{
    QFETCH(qsizetype, letters);
    const QString word(letters, u'x');
    QTEST(parse_as_utc(word + u"2020"_s, u'\'' + word + u"'yyyy"_s).isValid(), "is_date");
}

void test_date_parsing::iso_data()
{
    QTest::addColumn<qsizetype>("zeros");
    QTest::addColumn<bool>("is_date");
    QTest::newRow("longest") << qsizetype(43) << true;
    QTest::newRow("longer") << qsizetype(44) << false;
}

void test_date_parsing::iso()
{
    QFETCH(qsizetype, zeros);
    QTEST(parse_iso_as_utc(u"2020-05-03T10:00:00."_s + QString(zeros, u'0') + u'Z').isValid(), "is_date");
}

BLUETOOTH_LOGS_TEST(test_date_parsing, QCoreApplication)

#include "test_date_parsing.moc"
