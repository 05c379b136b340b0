// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/terminal_text.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class test_terminal_text : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
    void nothing_that_acts_gets_through();
    void width_data();
    void width();
    void beginning_data();
    void beginning();
    void parts_stay_what_they_are();
    void ascii_can_be_pasted();
    void style_ends_with_the_text();
};

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
    QTest::newRow("letter to an emoji") << u"a\u200d💻"_s            << u"a\\u{200d}💻"_s;
    QTest::newRow("two selectors")      << u"♀\ufe0f\ufe0f"_s         << u"♀\ufe0f\\u{fe0f}"_s;
    QTest::newRow("selector, letter")   << u"a\ufe0f"_s               << u"a\\u{fe0f}"_s;
    QTest::newRow("flag")               << u"🇩🇪"_s                    << u"🇩🇪"_s;
    // clang-format on
}

void test_terminal_text::text()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);

    QCOMPARE(terminal_text(text).to_string(), shown);
}

void test_terminal_text::nothing_that_acts_gets_through()
{
    for (char32_t character = 0; character <= 0x10ffff; ++character) {
        if (character == 0x40000) // nothing is assigned from here to the tags
            character = 0xe0000;
        if (character == 0xe1000) // one plane of private characters is like the other
            character = 0xfff00;
        const QString shown = terminal_text(u'a' + QString::fromUcs4(&character, 1) + u'b').to_string();
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
    QTest::newRow("escape")       << u"\033"_s          << 6;
    QTest::newRow("backslash")    << u"\\"_s            << 2;
    // clang-format on
}

void test_terminal_text::width()
{
    QFETCH(QString, text);
    QFETCH(int, columns);

    QCOMPARE(terminal_text(text).width(), qsizetype(columns));
}

void test_terminal_text::beginning_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("beginning");

    // clang-format off
    QTest::newRow("whole")             << u"abc"_s         << 3 << u"abc"_s;
    QTest::newRow("more room")         << u"abc"_s         << 9 << u"abc"_s;
    QTest::newRow("cut")               << u"abc"_s         << 2 << u"ab"_s;
    QTest::newRow("no room")           << u"abc"_s         << 0 << QString();
    QTest::newRow("half a character")  << u"a客厅"_s       << 4 << u"a客"_s;
    QTest::newRow("combining stays")   << u"e\u0301a"_s    << 1 << u"e\u0301"_s;
    QTest::newRow("emoji stays whole") << u"a👩🏽\u200d💻"_s << 2 << u"a"_s;
    QTest::newRow("emoji at the end")  << u"a👩🏽\u200d💻"_s << 3 << u"a👩🏽\u200d💻"_s;
    // clang-format on
}

void test_terminal_text::beginning()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QFETCH(QString, beginning);

    QCOMPARE(terminal_text(text).first_columns(columns).to_string(), beginning);
}

void test_terminal_text::parts_stay_what_they_are()
{
    const terminal_text safe = u"C:\\\x1b"_s;
    QCOMPARE((u"<"_s + safe + QString(u'\\')).to_string(), u"<C:\\\\\\u{1b}\\\\"_s);
    QCOMPARE(joined({safe, u"b"_s, terminal_text::escape(U'\x7f')}, u"\t"_s).to_string(),
             u"C:\\\\\\u{1b}\\u{9}b\\u{9}\\u{7f}"_s);
    QCOMPARE(joined({}, u"-"_s), terminal_text());
}

void test_terminal_text::ascii_can_be_pasted()
{
    QCOMPARE(terminal_text::ascii(u"$'a\\x1b'\x1b\u202e~"_s).to_string(), u"$'a\\x1b'\\u{1b}\\u{202e}~"_s);
}

void test_terminal_text::style_ends_with_the_text()
{
    QCOMPARE(terminal_text(u"a"_s).styled(terminal_style::bold).to_string(), u"\x1b[1ma\x1b[0m"_s);
    QCOMPARE(terminal_text(u"a"_s).styled(terminal_style::error).to_string(), u"\x1b[1;31ma\x1b[0m"_s);
    QCOMPARE(terminal_text(u"a\x1b"_s).styled(terminal_style::warning).to_string(), u"\x1b[1;33ma\\u{1b}\x1b[0m"_s);
}

BLUETOOTH_LOGS_TEST(test_terminal_text, QCoreApplication)

#include "test_terminal_text.moc"
