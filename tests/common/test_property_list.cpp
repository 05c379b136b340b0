// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/property_list.h"
#include "common/property_list/property_list_file.h"
#include "common/property_list/property_list_guard.h"
#include "tests/support/platform_limits.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <limits>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray with_second_object_as_root(QByteArray binary_list)
{
    constexpr qsizetype from_end = 9; // the last byte of the root's place in the trailer
    binary_list[binary_list.size() - from_end] = 1;
    return binary_list;
}

} // namespace

class test_property_list : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void encodings_data();
    void encodings();
    void refused_data();
    void refused();
    void left_to_the_parser_data();
    void left_to_the_parser();
    void what_the_guard_bears_data();
    void what_the_guard_bears();
    void largest_list();
    void xml_is_written_anew();
    void damaged_binary_lists_are_survived();
    void files_data();
    void files();

private:
    QTemporaryDir directory;
};

void test_property_list::values_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QVariant>("value");

    const QDateTime date(QDate(2020, 5, 3), QTime(10, 0), QTimeZone::utc());
    // clang-format off
    QTest::newRow("text")              << xml_list("<string> größe 🎧 &amp; </string>")        << QVariant(u" größe 🎧 & "_s);
    QTest::newRow("empty text")        << xml_list("<string/>")                                << QVariant(u""_s);
    QTest::newRow("CDATA")             << xml_list("<string><![CDATA[<b>]]>&amp;</string>")    << QVariant(u"<b>&"_s);
    QTest::newRow("comment")           << xml_list("<!-- <array> --><string>a</string>")       << QVariant(u"a"_s);
    QTest::newRow("integer")           << xml_list("<integer>7</integer>")                     << QVariant(7LL);
    QTest::newRow("lowest integer")    << xml_list("<integer>-9223372036854775808</integer>")  << QVariant(std::numeric_limits<qint64>::min());
    QTest::newRow("highest integer")   << xml_list("<integer>9223372036854775807</integer>")   << QVariant(std::numeric_limits<qint64>::max());
    QTest::newRow("highest unsigned")  << xml_list("<integer>18446744073709551615</integer>")  << QVariant(std::numeric_limits<quint64>::max());
    QTest::newRow("real")              << xml_list("<real>-2.5</real>")                        << QVariant(-2.5);
    QTest::newRow("real with exponent") << xml_list("<real>1.5e10</real>")                     << QVariant(1.5e10);
    QTest::newRow("blanks around")     << xml_list("<array><integer> 7\n</integer><real> 2.5 </real></array>") << QVariant(QVariantList{7LL, 2.5});
    QTest::newRow("zeros in front")    << xml_list("<array><integer>010</integer><integer>-0010</integer><integer>+07</integer></array>") << QVariant(QVariantList{10LL, -10LL, 7LL});
    QTest::newRow("reals beyond range") << xml_list("<array><real>1e999</real><real>-1e999</real><real>-infinity</real></array>")
                                       << QVariant(QVariantList{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()});
    QTest::newRow("first year's date") << xml_list("<date>0001-01-01T00:00:00Z</date>")        << QVariant(QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc()));
    QTest::newRow("empty key")         << xml_list("<dict><key/><true/><key>a</key><false/></dict>") << QVariant(QVariantMap{{u""_s, true}, {u"a"_s, false}});
    QTest::newRow("doubled key")       << xml_list("<dict><key>a</key><true/><key>a</key><false/></dict>") << QVariant(QVariantMap{{u"a"_s, false}});
    QTest::newRow("without plist")     << "<dict/>"_ba                                         << QVariant(QVariantMap());
    QTest::newRow("true")              << xml_list("<true/>")                                  << QVariant(true);
    QTest::newRow("false")             << xml_list("<false/>")                                 << QVariant(false);
    QTest::newRow("date")              << xml_list("<date>2020-05-03T10:00:00Z</date>")        << QVariant(date);
    QTest::newRow("data")              << xml_list("<data>\n\tAAH/\n</data>")                  << QVariant("\0\1\xff"_ba);
    QTest::newRow("array")             << xml_list("<array><true/><string>a</string></array>") << QVariant(QVariantList{true, u"a"_s});
    QTest::newRow("empty array")       << xml_list("<array/>")                                 << QVariant(QVariantList());
    QTest::newRow("dictionary")        << xml_list("<dict><key>b ü</key><true/><key>a</key><dict/></dict>") << QVariant(QVariantMap{{u"a"_s, QVariantMap()}, {u"b ü"_s, true}});
    QTest::newRow("binary, one-byte offsets") << "bplist00\xD1\x01\x02\x51\x61\x09\x08\x0B\x0D"_ba + QByteArray(6, '\0') + "\1\1"_ba + QByteArray(7, '\0') + "\3"_ba + QByteArray(15, '\0') + "\x0E"_ba
                                       << QVariant(QVariantMap{{u"a"_s, true}});
    QTest::newRow("binary text")       << binary_list({binary_text("a long text, counted apart")}) << QVariant(u"a long text, counted apart"_s);
    QTest::newRow("binary UTF-16")     << binary_list({"\x63\x00\xFC\xD8\x3C\xDF\xA7"_ba})     << QVariant(u"ü🎧"_s);
    QTest::newRow("binary integer")    << binary_list({"\x11\xFF\xFE"_ba})                     << QVariant(65534LL);
    QTest::newRow("binary negative")   << binary_list({"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE"_ba}) << QVariant(-2LL);
    QTest::newRow("binary unsigned")   << binary_list({"\x14" + QByteArray(8, '\0') + QByteArray(8, '\xFF')}) << QVariant(std::numeric_limits<quint64>::max());
    QTest::newRow("binary real")       << binary_list({binary_real(-2.5)})                     << QVariant(-2.5);
    QTest::newRow("binary true")       << binary_list({"\x09"_ba})                             << QVariant(true);
    QTest::newRow("binary false")      << binary_list({"\x08"_ba})                             << QVariant(false);
    QTest::newRow("binary date")       << binary_list({binary_date(610192800.9)})              << QVariant(date);
    QTest::newRow("binary data")       << binary_list({"\x43\x00\x01\xFF"_ba})                 << QVariant("\0\1\xff"_ba);
    QTest::newRow("binary array")      << binary_list({binary_array({1, 2, 1}), "\x09"_ba, binary_text("a")}) << QVariant(QVariantList{true, u"a"_s, true});
    QTest::newRow("binary dictionary") << binary_list({binary_dictionary({1, 2}, {3, 4}), binary_text("b"), binary_text("a"), "\x09"_ba, binary_dictionary({}, {})})
                                       << QVariant(QVariantMap{{u"a"_s, QVariantMap()}, {u"b"_s, true}});
    QTest::newRow("root behind another object") << with_second_object_as_root(binary_list({binary_text("b"), binary_text("a")})) << QVariant(u"a"_s);
    QTest::newRow("more entries than levels are allowed") << xml_list("<array>" + QByteArray("<true/>").repeated(200) + "</array>") << QVariant(QVariantList(200, true));
    QTest::newRow("first second of all")   << binary_list({binary_date(-63113904000.0)}) << QVariant(QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc()));
    QTest::newRow("before it")             << binary_list({binary_date(-63113904001.0)}) << QVariant(QDateTime());
    QTest::newRow("last second of all")    << binary_list({binary_date(252423993599.0)}) << QVariant(QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), QTimeZone::utc()));
    QTest::newRow("after it")              << binary_list({binary_date(252423993600.0)}) << QVariant(QDateTime());
    QTest::newRow("half a second before 2001") << binary_list({binary_date(-0.5)})       << QVariant(QDateTime(QDate(2000, 12, 31), QTime(23, 59, 59), QTimeZone::utc()));
    QTest::newRow("binary empty key")  << binary_list({binary_dictionary({1}, {2}), binary_text(""), "\x09"_ba}) << QVariant(QVariantMap{{u""_s, true}});
    QTest::newRow("binary doubled key") << binary_list({binary_dictionary({1, 1}, {2, 3}), binary_text("a"), "\x09"_ba, "\x08"_ba}) << QVariant(QVariantMap{{u"a"_s, false}});
    // clang-format on
}

void test_property_list::values()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, list);
    QFETCH(QVariant, value);

    const QVariant parsed = parse_property_list(guarded_property_list(list));
    QCOMPARE(parsed.metaType(), value.metaType());
    QCOMPARE(parsed, value);
}

void test_property_list::encodings_data()
{
    QTest::addColumn<QStringConverter::Encoding>("encoding");
    QTest::addColumn<bool>("has_mark");

    // clang-format off
    QTest::newRow("UTF-8")                          << QStringConverter::Utf8    << false;
    QTest::newRow("UTF-8 with a byte order mark")   << QStringConverter::Utf8    << true;
    QTest::newRow("UTF-16 big-endian with mark")    << QStringConverter::Utf16BE << true;
    QTest::newRow("UTF-16 little-endian with mark") << QStringConverter::Utf16LE << true;
    // clang-format on
}

void test_property_list::encodings()
{
    QFETCH(QStringConverter::Encoding, encoding);
    QFETCH(bool, has_mark);

    QStringEncoder encoder(encoding, has_mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
    const QByteArray list = encoder(u"<plist><string>größe 🎧</string></plist>"_s);
    QCOMPARE(parse_property_list(guarded_property_list(list)), QVariant(u"größe 🎧"_s));
}

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

void test_property_list::refused_data()
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
void test_property_list::refused()
{
    QFETCH(QByteArray, list);

    QElapsedTimer timer;
    timer.start();
    QVERIFY(guarded_property_list(list).isNull());
    QVERIFY2(timer.elapsed() < 20'000, qPrintable(QString::number(timer.elapsed())));
}

void test_property_list::left_to_the_parser_data()
{
    QTest::addColumn<QByteArray>("list");

    // clang-format off
    QTest::newRow("no value")                    << xml_list("");
    QTest::newRow("value without a key")         << xml_list("<dict><true/></dict>");
    QTest::newRow("unknown element")             << xml_list("<dictionary/>");
    // clang-format on
}

void test_property_list::left_to_the_parser()
{
    QFETCH(QByteArray, list);
    const QByteArray guarded = guarded_property_list(list);
    QVERIFY(!guarded.isNull());
    QVERIFY(!parse_property_list(guarded).isValid());
}

void test_property_list::what_the_guard_bears_data()
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

void test_property_list::what_the_guard_bears()
{
    QFETCH(QByteArray, list);
    QFETCH(bool, readable);

    const QByteArray guarded = guarded_property_list(list);
    QCOMPARE(!guarded.isNull(), readable);
    if (readable)
        QVERIFY(parse_property_list(guarded).isValid());
}

void test_property_list::largest_list()
{
    QByteArray list = xml_list("<true/>");
    list.append(QByteArray(largest_property_list_bytes - list.size(), '\n'));
    QVERIFY(!guarded_property_list(list).isNull());
    QVERIFY(guarded_property_list(list + '\n').isNull());
}

void test_property_list::xml_is_written_anew()
{
    const QByteArray list = "\xEF\xBB\xBF<?xml version='1.0'?><?note <a>?><!DOCTYPE plist SYSTEM \">\">"
                            "<!-- <array> --><plist a='<'><string b='1'><![CDATA[<&]]>&#65;</string></plist><!-- -->";
    QVERIFY(guarded_property_list(list).isNull()); // "<" cannot stand in an attribute
    QCOMPARE(guarded_property_list(QByteArray(list).replace("a='<'", "a='>'")),
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist><string>&lt;&amp;A</string></plist>"_ba);
}

/** Every byte of a list with every kind of object is changed, and the list is cut at every length. */
void test_property_list::damaged_binary_lists_are_survived()
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

void test_property_list::files_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");

    const auto write = [this](const QString &name, const QByteArray &content, qint64 size) {
        QFile file(directory.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.resize(size))
            qFatal("cannot write %s", qPrintable(name));
    };
    const QByteArray list = xml_list("<string>a</string>");
    write(u"list"_s, list, list.size());
    write(u"empty"_s, {}, 0);
    write(u"huge"_s, list, 100LL << 30);
    QDir(directory.path()).mkdir(u"directory"_s);
    QFile::link(directory.filePath(u"list"_s), directory.filePath(u"link"_s));
    QFile::link(u"/dev/zero"_s, directory.filePath(u"device"_s));
    QFile::link(directory.filePath(u"loop"_s), directory.filePath(u"loop"_s));
    ::mkfifo(QFile::encodeName(directory.filePath(u"fifo"_s)).constData(), 0600);

    // clang-format off
    QTest::newRow("a list")              << u"list"_s      << QVariant(u"a"_s);
    QTest::newRow("a link to it")        << u"link"_s      << QVariant(u"a"_s);
    QTest::newRow("missing")             << u"missing"_s   << QVariant();
    QTest::newRow("empty")               << u"empty"_s     << QVariant();
    QTest::newRow("a hundred gigabytes") << u"huge"_s      << QVariant();
    QTest::newRow("a directory")         << u"directory"_s << QVariant();
    QTest::newRow("a link to a device")  << u"device"_s    << QVariant();
    QTest::newRow("a link to itself")    << u"loop"_s      << QVariant();
    QTest::newRow("a pipe")              << u"fifo"_s      << QVariant();
    // clang-format on
}

void test_property_list::files()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);

    QCOMPARE(read_property_list(directory.filePath(name)), value);
}

BLUETOOTH_LOGS_TEST(test_property_list, QCoreApplication)

#include "test_property_list.moc"
