// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/json_text.h"

#include "host/text/count_text.h"
#include "host/text/raw_json.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

cell real(double value)
{
    return {cell::type::real, 0, value, {}};
}

cell blob(QByteArrayView bytes)
{
    return {cell::type::blob, 0, 0, bytes};
}

} // namespace

Q_DECLARE_METATYPE(cell)

/** Values as JSON that is written piece by piece, and members as they stand in it. */
class test_json_text : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void escaped_characters();
    void texts_data();
    void texts();
    void values_data();
    void values();
    void members_data();
    void members();
    void counts();
};

/** Of all characters below 0x10000 those that do not stand for themselves. */
void test_json_text::escaped_characters()
{
    QStringList escaped;
    for (char32_t character = 0; character < 0x10000; ++character) {
        if (QChar::isSurrogate(character))
            continue;
        const QByteArray utf8 = QString(QChar(char16_t(character))).toUtf8();
        QByteArray json;
        append_json_text(json, utf8);
        if (json != '"' + utf8 + '"')
            escaped.append(QString::number(uint(character), 16) + u' '
                           + QString::fromLatin1(json.sliced(1).chopped(1)));
    }
    QStringList expected;
    for (const auto &[first, last] :
         {std::pair(0x0, 0x1f), std::pair(0x22, 0x22), std::pair(0x5c, 0x5c), std::pair(0x7f, 0x9f),
          std::pair(0x61c, 0x61c), std::pair(0x200e, 0x200f), std::pair(0x2028, 0x202e), std::pair(0x2066, 0x2069),
          std::pair(0xfeff, 0xfeff)}) {
        for (int character = first; character <= last; ++character) {
            const QString digits = QString::number(character, 16);
            const QString short_form = character == '\n'   ? u"\\n"_s
                                       : character == '\t' ? u"\\t"_s
                                       : character == '"'  ? u"\\\""_s
                                       : character == '\\' ? u"\\\\"_s
                                                           : QString();
            expected.append(digits + u' '
                            + (short_form.isEmpty() ? u"\\u"_s + digits.rightJustified(4, u'0') : short_form));
        }
    }
    QCOMPARE(escaped, expected);
}

void test_json_text::texts_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("json");

    // clang-format off
    QTest::newRow("empty")             << QByteArray("")               << QByteArray(R"("")");
    QTest::newRow("around an escape")  << QByteArray("ab\ncd")         << QByteArray(R"("ab\ncd")");
    QTest::newRow("at both ends")      << QByteArray("\nab\n")         << QByteArray(R"("\nab\n")");
    QTest::newRow("two in a row")      << QByteArray("a\u2028\u2029b") << QByteArray(R"("a\u2028\u2029b")");
    QTest::newRow("above 0xffff")      << QByteArray("a🎧b")           << QByteArray("\"a🎧b\"");
    QTest::newRow("no UTF-8")          << QByteArray("a\xff")          << QByteArray(R"({"base64":"Yf8="})");
    // clang-format on
}

void test_json_text::texts()
{
    QFETCH(const QByteArray, bytes);
    QByteArray json("x");
    append_json_bytes(json, bytes);
    QTEST(json.sliced(1), "json");
}

void test_json_text::values_data()
{
    QTest::addColumn<cell>("value");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("text");

    constexpr double infinite = std::numeric_limits<double>::infinity();
    // clang-format off
    QTest::newRow("null")        << cell()                                                    << QByteArray("null")                   << QByteArray();
    QTest::newRow("zero")        << cell::of_integer(0)                                       << QByteArray("0")                      << QByteArray("0");
    QTest::newRow("least")       << cell::of_integer(std::numeric_limits<qint64>::min())      << QByteArray("-9223372036854775808")   << QByteArray("-9223372036854775808");
    QTest::newRow("largest")     << cell::of_integer(std::numeric_limits<qint64>::max())      << QByteArray("9223372036854775807")    << QByteArray("9223372036854775807");
    QTest::newRow("whole real")  << real(1)                                                   << QByteArray("1.0")                    << QByteArray("1");
    QTest::newRow("short real")  << real(0.1)                                                 << QByteArray("0.1")                    << QByteArray("0.1");
    QTest::newRow("long real")   << real(0.1 + 0.2)                                           << QByteArray("0.30000000000000004")    << QByteArray("0.30000000000000004");
    QTest::newRow("exponent")    << real(1e300)                                               << QByteArray("1e+300")                 << QByteArray("1e+300");
    QTest::newRow("infinite")    << real(infinite)                                            << QByteArray(R"({"real":"inf"})")      << QByteArray("inf");
    QTest::newRow("below all")   << real(-infinite)                                           << QByteArray(R"({"real":"-inf"})")     << QByteArray("-inf");
    QTest::newRow("text")        << cell::of_text("a\"b")                                     << QByteArray(R"("a\"b")")              << QByteArray("a\"b");
    QTest::newRow("no UTF-8")    << cell::of_text("\xff")                                     << QByteArray(R"({"base64":"/w=="})")   << QByteArray("\xff");
    QTest::newRow("blob")        << blob("ab")                                                << QByteArray(R"({"base64":"YWI="})")   << QByteArray("ab");
    QTest::newRow("no number")   << cell::of_integer(std::optional<qint64>())                 << QByteArray("null")                   << QByteArray();
    QTest::newRow("some number") << cell::of_integer(std::optional<qint64>(7))                << QByteArray("7")                      << QByteArray("7");
    QTest::newRow("text or null, empty") << cell::of_text_or_null("")                         << QByteArray("null")                   << QByteArray();
    QTest::newRow("text or null") << cell::of_text_or_null("a")                               << QByteArray(R"("a")")                 << QByteArray("a");
    QTest::newRow("null array")  << cell::of_text_if_any({})                                  << QByteArray("null")                   << QByteArray();
    QTest::newRow("empty array") << cell::of_text_if_any("")                                  << QByteArray(R"("")")                  << QByteArray();
    // clang-format on
}

void test_json_text::values()
{
    QFETCH(const cell, value);
    QByteArray json;
    append_json_value(json, value);
    QTEST(json, "json");
    QTEST(text_of(value), "text");
}

void test_json_text::members_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QByteArrayList>("members"); // "name=value", sorted; "none": it is no object

    // clang-format off
    QTest::newRow("empty")        << QByteArray("{}")                                   << QByteArrayList{};
    QTest::newRow("blanks")       << QByteArray(" {\t\"a\" :\r\n 1.50 , \"b\": null }\n") << QByteArrayList{"a=1.50", "b=null"};
    QTest::newRow("nested")       << QByteArray(R"({"a":{"x":[1,{"y":2}]},"b":[[],"c"]})") << QByteArrayList{R"(a={"x":[1,{"y":2}]})", R"(b=[[],"c"])"};
    QTest::newRow("signs in texts") << QByteArray(R"({"a":"},]\":\\","b":"{["})")       << QByteArrayList{R"(a="},]\":\\")", R"(b="{[")"};
    QTest::newRow("escaped name") << QByteArray(R"({"a\"b":1})")                        << QByteArrayList{R"(a\"b=1)"};
    QTest::newRow("twice")        << QByteArray(R"({"a":1,"a":2})")                     << QByteArrayList{"a=2"};
    QTest::newRow("array")        << QByteArray("[1]")                                  << QByteArrayList{"none"};
    QTest::newRow("cut")          << QByteArray(R"({"a":1)")                            << QByteArrayList{"none"};
    QTest::newRow("nothing")      << QByteArray()                                       << QByteArrayList{"none"};
    // clang-format on
}

void test_json_text::members()
{
    QFETCH(const QByteArray, object);
    QByteArrayList members;
    if (const auto found = raw_json_members(object)) {
        for (auto member = found->cbegin(); member != found->cend(); ++member)
            members.append(member.key().toByteArray() + '=' + member->toByteArray());
    } else {
        members.append("none");
    }
    std::sort(members.begin(), members.end());
    QTEST(members, "members");
}

void test_json_text::counts()
{
    QCOMPARE(count_text(qint64(1234567)), u"1,234,567"_s);
    QCOMPARE(count_text(std::optional<qint64>(0)), u"0"_s);
    QCOMPARE(count_text(std::optional<qint64>()), u"an unknown number"_s);
    QCOMPARE(rows_text(0), u"0 rows"_s);
    QCOMPARE(rows_text(1), u"1 row"_s);
    QCOMPARE(rows_text(1000), u"1,000 rows"_s);
}

BLUETOOTH_LOGS_TEST(test_json_text, QCoreApplication)

#include "test_json_text.moc"
