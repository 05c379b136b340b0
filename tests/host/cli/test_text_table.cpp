// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/text_table.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class test_text_table : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void columns_are_aligned();
    void a_very_long_cell_widens_no_column();
};

void test_text_table::columns_are_aligned()
{
    text_table table;
    table.add_column(u"n"_s, 4, true);
    table.add_column(u"name"_s, 8, false);
    table.add_column(u"end"_s, 1, false);
    QCOMPARE(table.heading_lines(), terminal_texts({u"     n  name      end"_s, u"  ────  ────────  ───"_s}));
    QCOMPARE(table.line({u"1"_s, u"客厅音箱"_s, u"x"_s}), terminal_text(u"     1  客厅音箱  x"_s));
    QCOMPARE(table.line({u"1000"_s, u"e\u0301"_s, u"y"_s}), terminal_text(u"  1000  e\u0301         y"_s));
    QCOMPARE(table.width(), 21);
}

void test_text_table::a_very_long_cell_widens_no_column()
{
    text_table table;
    table.add_column(u"a"_s, 100, false);
    table.add_column(u"b"_s, 1, false);
    QCOMPARE(table.line({QString(100, u'x'), u"1"_s}), terminal_text(u"  "_s + QString(100, u'x') + u"  1"_s));
    QCOMPARE(table.line({u"y"_s, u"2"_s}), terminal_text(u"  y"_s + QString(59, u' ') + u"  2"_s));
    QCOMPARE(table.width(), 2 + 60 + 2 + 1);
}

BLUETOOTH_LOGS_TEST(test_text_table, QCoreApplication)

#include "test_text_table.moc"
