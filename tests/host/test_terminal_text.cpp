// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/text_table.h"
#include "host/files/terminal_text.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class test_terminal_text : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void text_data();
    void text();
    void nothing_that_acts_gets_through();
    void width_data();
    void width();
    void table_is_aligned();
    void a_very_long_cell_widens_no_column();
};

void test_terminal_text::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void test_terminal_text::text_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");

    // clang-format off
    QTest::newRow("plain")              << u"Desk's Phone"_s          << u"Desk's Phone"_s;
    QTest::newRow("empty")              << QString()                  << QString();
    QTest::newRow("scripts")            << u"Кухня 客厅 ليلى דנה ลำโพง"_s << u"Кухня 客厅 ليلى דנה ลำโพง"_s;
    QTest::newRow("NUL")                << QString(QChar(u'\0'))      << u"\\u{0}"_s;
    QTest::newRow("colour")             << u"\x1b[31mred"_s           << u"\\u{1b}[31mred"_s;
    QTest::newRow("title")              << u"\x1b]0;x\x07"_s          << u"\\u{1b}]0;x\\u{7}"_s;
    QTest::newRow("8-bit control")      << u"\u009b31m"_s             << u"\\u{9b}31m"_s;
    QTest::newRow("delete")             << u"a\u007f"_s               << u"a\\u{7f}"_s;
    QTest::newRow("line ends")          << u"a\r\nb\tc"_s             << u"a\\u{d}\\u{a}b\\u{9}c"_s;
    QTest::newRow("Unicode line ends")  << u"a\u2028b\u2029c\u0085"_s << u"a\\u{2028}b\\u{2029}c\\u{85}"_s;
    QTest::newRow("override")           << u"photo\u202egpj.exe"_s    << u"photo\\u{202e}gpj.exe"_s;
    QTest::newRow("isolates")           << u"\u2066a\u2069"_s         << u"\\u{2066}a\\u{2069}"_s;
    QTest::newRow("bidi marks")         << u"\u200e\u200f\u061c"_s    << u"\\u{200e}\\u{200f}\\u{61c}"_s;
    QTest::newRow("zero width")         << u"a\u200bb\ufeff\u2060"_s  << u"a\\u{200b}b\\u{feff}\\u{2060}"_s;
    QTest::newRow("soft hyphen")        << u"a\u00adb"_s              << u"a\\u{ad}b"_s;
    QTest::newRow("joiner in a word")   << u"a\u200db\u200cc"_s       << u"a\\u{200d}b\\u{200c}c"_s;
    QTest::newRow("tag characters")     << u"a\U000e0041"_s           << u"a\\u{e0041}"_s;
    QTest::newRow("filler")             << u"\u3164"_s                << u"\\u{3164}"_s;
    QTest::newRow("grapheme joiner")    << u"a\u034f"_s               << u"a\\u{34f}"_s;
    QTest::newRow("other blanks")       << u"a\u00a0b\u3000c\u2003"_s << u"a\\u{a0}b\\u{3000}c\\u{2003}"_s;
    QTest::newRow("unassigned")         << u"\u0378"_s                << u"\\u{378}"_s;
    QTest::newRow("noncharacter")       << u"\uffff"_s                << u"\\u{ffff}"_s;
    QTest::newRow("private use")        << u"\uf8ff"_s                << u"\uf8ff"_s;
    QTest::newRow("backslash")          << u"C:\\u{1b}"_s             << u"C:\\\\u{1b}"_s;
    QTest::newRow("combining")          << u"e\u0301"_s               << u"e\u0301"_s;
    QTest::newRow("mark without base")  << u"\u0301a"_s               << u"\\u{301}a"_s;
    QTest::newRow("pile of marks")      << u'a' + QString(9, QChar(0x301)) << u'a' + QString(8, QChar(0x301)) + u"\\u{301}"_s;
    QTest::newRow("emoji")              << u"🎧"_s                    << u"🎧"_s;
    QTest::newRow("joined emoji")       << u"👩🏽\u200d💻"_s           << u"👩🏽\u200d💻"_s;
    QTest::newRow("joined, selector")   << u"🏃\u200d♀\ufe0f"_s       << u"🏃\u200d♀\ufe0f"_s;
    QTest::newRow("joiner at the end")  << u"👩\u200d"_s              << u"👩\\u{200d}"_s;
    QTest::newRow("joiner to a letter") << u"👩\u200da"_s             << u"👩\\u{200d}a"_s;
    QTest::newRow("two selectors")      << u"♀\ufe0f\ufe0f"_s         << u"♀\ufe0f\\u{fe0f}"_s;
    QTest::newRow("selector, letter")   << u"a\ufe0f"_s               << u"a\\u{fe0f}"_s;
    QTest::newRow("flag")               << u"🇩🇪"_s                    << u"🇩🇪"_s;
    // clang-format on
}

void test_terminal_text::text()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);

    QCOMPARE(terminal_text(text), shown);
}

void test_terminal_text::nothing_that_acts_gets_through()
{
    for (char32_t character = 0; character <= 0x10ffff; ++character) {
        const QString shown = terminal_text(u'a' + QString::fromUcs4(&character, 1) + u'b');
        const QList<uint> characters = shown.toUcs4();
        for (const uint value : characters) {
            const QChar::Category category = QChar::category(char32_t(value));
            QVERIFY2(category != QChar::Other_Control && category != QChar::Other_Format
                         && category != QChar::Separator_Line && category != QChar::Separator_Paragraph,
                     qPrintable(QString::number(character, 16)));
        }
    }
}

void test_terminal_text::width_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");

    // clang-format off
    QTest::newRow("empty")        << QString()          << 0;
    QTest::newRow("Latin")        << u"abc"_s           << 3;
    QTest::newRow("Cyrillic")     << u"Кухня"_s         << 5;
    QTest::newRow("Chinese")      << u"客厅"_s          << 4;
    QTest::newRow("Korean")       << u"거실"_s          << 4;
    QTest::newRow("Arabic")       << u"ليلى"_s          << 4;
    QTest::newRow("combining")    << u"Zoe\u0308"_s     << 3;
    QTest::newRow("Thai")         << u"ลำโพง"_s         << 5;
    QTest::newRow("emoji")        << u"🎧"_s            << 2;
    QTest::newRow("two emoji")    << u"🎧🎧"_s          << 4;
    QTest::newRow("joined emoji") << u"👩🏽\u200d💻"_s   << 2;
    QTest::newRow("selector")     << u"♀\ufe0f"_s       << 2;
    QTest::newRow("flag")         << u"🇩🇪"_s            << 2;
    QTest::newRow("escape")       << u"\\u{1b}"_s       << 6;
    // clang-format on
}

void test_terminal_text::width()
{
    QFETCH(QString, text);
    QFETCH(int, columns);

    QCOMPARE(terminal_width(text), qsizetype(columns));
}

void test_terminal_text::table_is_aligned()
{
    text_table table({u"n"_s, u"name"_s, u"end"_s});
    table.align_right(0);
    table.add_row({u"1"_s, u"客厅音箱"_s, u"x"_s});
    table.add_row({u"1000"_s, u"e\u0301"_s, u"y"_s});
    QCOMPARE(table.lines(), QStringList({u"     n  name      end"_s, u"  ────  ────────  ───"_s,
                                         u"     1  客厅音箱  x"_s, u"  1000  e\u0301         y"_s}));
}

void test_terminal_text::a_very_long_cell_widens_no_column()
{
    text_table table({u"a"_s, u"b"_s});
    table.add_row({QString(100, u'x'), u"1"_s});
    table.add_row({u"y"_s, u"2"_s});
    QCOMPARE(table.lines().at(2), u"  "_s + QString(100, u'x') + u"  1"_s);
    QCOMPARE(table.lines().at(3), u"  y"_s + QString(59, u' ') + u"  2"_s);
}

QTEST_GUILESS_MAIN(test_terminal_text)

#include "test_terminal_text.moc"
