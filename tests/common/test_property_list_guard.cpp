// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/property_list/property_list_guard.h"

#include "common/platform/property_list.h"
#include "tests/support/platform_limits.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** Arrays or dictionaries inside each other. */
QByteArray nested_xml(const QByteArray &open, const QByteArray &close, int levels)
{
    return xml_list(open.repeated(levels) + close.repeated(levels));
}

/** The object at place n is made by @p container to hold the one at n + 1; the last is a text. */
template<typename Container>
QByteArray nested_binary(int levels, Container container)
{
    QList<QByteArray> objects;
    for (int level = 1; level <= levels; ++level)
        objects.append(container(static_cast<quint32>(level), static_cast<quint32>(levels)));
    objects.append(binary_text("a"));
    return binary_list(objects);
}

QByteArray one_entry(quint32 next, quint32 last)
{
    Q_UNUSED(last)
    return binary_array({next});
}

QByteArray one_value(quint32 next, quint32 last)
{
    return binary_dictionary({last}, {next});
}

QByteArray same_entry_twice(quint32 next, quint32 last)
{
    Q_UNUSED(last)
    return binary_array({next, next});
}

QByteArray crowded_tag(int attributes)
{
    QByteArray list = "<plist";
    for (int i = 0; i < attributes; ++i)
        list += " a" + QByteArray::number(i) + "='>'";
    return list + "><true/></plist>";
}

QByteArray replaced(QByteArray list, qsizetype from_end, const QByteArray &bytes)
{
    return list.replace(list.size() - from_end, bytes.size(), bytes);
}

/**
 * The root is an array whose references of one byte are the offset table behind it, the trailer and one byte more than
 * the file has. Object 256 is the root, all others are the same true, so that every byte is a reference to one of
 * these.
 */
QByteArray references_beyond_the_end()
{
    const QByteArray table = QByteArray(256, '\x08') + '\x09';
    const QByteArray trailer = QByteArray(6, '\0') + "\1\1" + QByteArray(6, '\0') + "\1\1" + QByteArray(6, '\0')
                               + QByteArray("\1\0", 2) + QByteArray(7, '\0') + '\x0D';
    const auto count = quint16(table.size() + trailer.size() + 1);
    const char size[] = {char(count >> 8), char(count & 0xFF)};
    return "bplist00\x09\xAF\x11" + QByteArray(size, 2) + table + trailer;
}

} // namespace

class test_property_list_guard : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void left_to_the_parser_data();
    void left_to_the_parser();
    void accepted_data();
    void accepted();
    void largest_list();
    void xml_is_written_anew();
    void damaged_binary_lists_are_survived();
};

void test_property_list_guard::refused_data()
{
    QTest::addColumn<QByteArray>("list");

    const QByteArray small = binary_list({binary_array({1}), binary_text("a")});
    const QByteArray entities = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">"
                                "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;\">]><plist><string>&c;</string></plist>";
    // clang-format off
    QTest::newRow("nothing")                     << ""_ba;
    QTest::newRow("no list")                     << "just a text"_ba;
    QTest::newRow("OpenStep list")               << "{ DeviceCache = { a = b; }; }"_ba;
    QTest::newRow("zeros")                       << QByteArray(1000, '\0');
    QTest::newRow("XML without an end")          << "<plist><dict>"_ba;
    QTest::newRow("XML closed the wrong way")    << "<plist><dict></plist></dict>"_ba;
    QTest::newRow("XML behind the end")          << xml_list("<dict/>") + "<plist/>";
    QTest::newRow("entities that grow")          << entities;
    QTest::newRow("entity from a file")          << "<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]><plist><string>&a;</string></plist>"_ba;
    QTest::newRow("entity of the declaration")   << "<!DOCTYPE plist [<!ENTITY % a \"x\"> %a; ]><plist><dict/></plist>"_ba;
    QTest::newRow("undeclared entity")           << xml_list("<string>&a;</string>");
    QTest::newRow("crowded tag")                 << crowded_tag(1'000'000);
    QTest::newRow("XML arrays, 200,000 levels")  << nested_xml("<array>", "</array>", 200'000);
    QTest::newRow("XML dictionaries, 200,000 levels") << nested_xml("<dict><key>a</key>", "</dict>", 200'000);
    QTest::newRow("XML arrays never closed")     << xml_list(QByteArray("<array>").repeated(200'000));
    QTest::newRow("unknown elements, 200,000 levels") << nested_xml("<a>", "</a>", 200'000);
    QTest::newRow("levels in a declaration")     << "<!DOCTYPE plist SYSTEM \"><plist>" + QByteArray("<array>").repeated(100'000) + "\">";
    QTest::newRow("two million elements")        << xml_list("<array>" + QByteArray("<true/>").repeated(2'000'000) + "</array>");
    QTest::newRow("only the binary mark")        << "bplist00"_ba;
    QTest::newRow("binary without a trailer")    << small.chopped(1);
    QTest::newRow("binary of another version")   << "bplist15" + small.sliced(8);
    QTest::newRow("no object")                   << replaced(small, 24, QByteArray(8, '\0'));
    QTest::newRow("more objects than bytes")     << replaced(replaced(small, 24, QByteArray(8, '\xFF')), 16, QByteArray(8, '\x7F'));
    QTest::newRow("root outside")                << replaced(small, 16, QByteArray(8, '\xFF'));
    QTest::newRow("table outside")               << replaced(small, 8, QByteArray(8, '\xFF'));
    QTest::newRow("offsets without width")       << replaced(small, 26, "\0"_ba);
    QTest::newRow("offsets too wide")            << replaced(small, 26, "\x10"_ba);
    QTest::newRow("references without width")    << replaced(small, 25, "\0"_ba);
    QTest::newRow("reference outside")           << binary_list({binary_array({7})});
    QTest::newRow("count larger than the file")  << binary_list({"\xAF\x12\x7F\xFF\xFF\xFF"_ba});
    QTest::newRow("count of 64 bits")            << binary_list({"\xDF\x13\x80\x00\x00\x00\x00\x00\x00\x01"_ba});
    QTest::newRow("count that is no integer")    << binary_list({"\xAF\x51\x31"_ba});
    QTest::newRow("NUL in a text")               << binary_list({binary_text("a\0b"_ba)});
    QTest::newRow("NUL in an UTF-16 text")       << binary_list({"\x62\x00\x61\x00\x00"_ba});
    QTest::newRow("NUL in a key")                << binary_list({binary_dictionary({1}, {2}), binary_text("Name\0x"_ba), binary_text("a")});
    QTest::newRow("text beyond the end")         << binary_list({"\x5F\x11\x40\x00"_ba});
    QTest::newRow("array in itself")             << binary_list({binary_array({0})});
    QTest::newRow("dictionary in itself")        << binary_list({binary_dictionary({1}, {0}), binary_text("a")});
    QTest::newRow("dictionary as its own key")   << binary_list({binary_dictionary({0}, {1}), binary_text("a")});
    QTest::newRow("arrays in each other")        << binary_list({binary_array({1}), binary_array({0})});
    QTest::newRow("set in itself")               << binary_list({"\xC1\x00\x00\x00\x00"_ba});
    QTest::newRow("many of itself")              << binary_list({binary_array(QList<quint32>(1000, 0))});
    QTest::newRow("binary arrays, 200,000 levels") << nested_binary(200'000, one_entry);
    QTest::newRow("binary dictionaries, 200,000 levels") << nested_binary(200'000, one_value);
    QTest::newRow("doubled on 30 levels")        << nested_binary(30, same_entry_twice);
    QTest::newRow("a long text 10,000 times")    << binary_list({binary_array(QList<quint32>(10'000, 1)), binary_text(QByteArray(1'000'000, 'a'))});
    QTest::newRow("two million references")      << binary_list({binary_array(QList<quint32>(2'000'000, 1)), binary_text("a")});
    QTest::newRow("object outside")              << replaced(small, 36, QByteArray(4, '\x7F'));
    QTest::newRow("references beyond the end")   << references_beyond_the_end();
    QTest::newRow("reference behind the last object") << binary_list({binary_array({1})});
    QTest::newRow("root behind the last object") << replaced(small, 16, QByteArray("\0\0\0\0\0\0\0\2", 8));
    QTest::newRow("too large")                   << xml_list("<string>" + QByteArray(largest_property_list_bytes, 'a') + "</string>");
    // clang-format on
}

/** What the parser would refuse, too, does not reach it. */
void test_property_list_guard::refused()
{
    QFETCH(QByteArray, list);

    QElapsedTimer timer;
    timer.start();
    QVERIFY(guarded_property_list(list).isNull());
    QVERIFY2(timer.elapsed() < 20'000, qPrintable(QString::number(timer.elapsed())));
}

void test_property_list_guard::left_to_the_parser_data()
{
    QTest::addColumn<QByteArray>("list");

    // clang-format off
    QTest::newRow("no value")                    << xml_list("");
    QTest::newRow("value without a key")         << xml_list("<dict><true/></dict>");
    QTest::newRow("unknown element")             << xml_list("<dictionary/>");
    // clang-format on
}

void test_property_list_guard::left_to_the_parser()
{
    QFETCH(QByteArray, list);
    const QByteArray guarded = guarded_property_list(list);
    QVERIFY(!guarded.isNull());
    QVERIFY(!parse_property_list(guarded).isValid());
}

void test_property_list_guard::accepted_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("readable");

    constexpr int most = deepest_property_list_level - 1; // below "plist", or above the text
    // clang-format off
    QTest::newRow("XML arrays")                  << nested_xml("<array>", "</array>", most)     << true;
    QTest::newRow("XML arrays, one more")        << nested_xml("<array>", "</array>", most + 1) << false;
    QTest::newRow("binary arrays")               << nested_binary(most, one_entry)              << true;
    QTest::newRow("binary arrays, one more")     << nested_binary(most + 1, one_entry)          << false;
    QTest::newRow("one more, above the root")    << with_second_object_as_root(nested_binary(most + 1, one_entry)) << true;
    QTest::newRow("binary dictionaries")         << nested_binary(most, one_value)              << true;
    QTest::newRow("binary dictionaries, one more") << nested_binary(most + 1, one_value)        << false;
    QTest::newRow("attributes")                  << crowded_tag(4472)                           << true;
    QTest::newRow("attributes, one more")        << crowded_tag(4473)                           << false;
    QTest::newRow("signs in many tags")          << xml_list("<array>" + QByteArray("<string>=</string>").repeated(5000) + "</array>") << true;
    // clang-format on
}

void test_property_list_guard::accepted()
{
    QFETCH(QByteArray, list);
    QFETCH(bool, readable);

    const QByteArray guarded = guarded_property_list(list);
    QCOMPARE(!guarded.isNull(), readable);
    if (readable)
        QVERIFY(parse_property_list(guarded).isValid());
}

void test_property_list_guard::largest_list()
{
    QByteArray list = xml_list("<true/>");
    list.append(QByteArray(largest_property_list_bytes - list.size(), '\n'));
    QVERIFY(!guarded_property_list(list).isNull());
    QVERIFY(guarded_property_list(list + '\n').isNull());
}

void test_property_list_guard::xml_is_written_anew()
{
    const QByteArray list = "\xEF\xBB\xBF<?xml version='1.0'?><?note <a>?><!DOCTYPE plist SYSTEM \">\">"
                            "<!-- <array> --><plist a='<'><string b='1'><![CDATA[<&]]>&#65;</string></plist><!-- -->";
    QVERIFY(guarded_property_list(list).isNull()); // "<" cannot stand in an attribute
    QCOMPARE(guarded_property_list(QByteArray(list).replace("a='<'", "a='>'")),
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist><string>&lt;&amp;A</string></plist>"_ba);
}

/** Every byte of a list with every kind of object is changed, and the list is cut at every length. */
void test_property_list_guard::damaged_binary_lists_are_survived()
{
    SKIP_AT_PLATFORM_LIMIT();
    const QByteArray list = binary_list({binary_dictionary({1, 2, 3}, {4, 5, 6}), binary_text("DeviceCache"),
                                         binary_text("a"), binary_text("b"), binary_array({7, 8, 9, 10}),
                                         binary_text(QByteArray(20, 'x')), "\x62\xD8\x3C\xDF\xA7"_ba, "\x09"_ba,
                                         binary_date(1), binary_real(2), "\x43\x00\x01\xFF"_ba});
    QVERIFY(parse_property_list(guarded_property_list(list)).isValid());
    int survived = 0;
    const auto read = [&survived](const QByteArray &damaged) {
        const QByteArray guarded = guarded_property_list(damaged);
        if (!guarded.isNull())
            parse_property_list(guarded);
        ++survived;
    };
    for (qsizetype at = 0; at < list.size(); ++at) {
        read(list.first(at));
        for (int byte = 0; byte < 256; ++byte)
            read(replaced(list, list.size() - at, QByteArray(1, static_cast<char>(byte))));
    }
    QCOMPARE(survived, 257 * list.size());
}

BLUETOOTH_LOGS_TEST(test_property_list_guard, QCoreApplication)

#include "test_property_list_guard.moc"
