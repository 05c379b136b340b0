// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/device_address.h"
#include "host/report/page/html_text.h"
#include "host/report/reading/counter.h"
#include "host/report/reading/log_line.h"
#include "host/report/reading/preferences_names.h"
#include "host/report/reading/row_ranks.h"
#include "host/report/reading/row_reading.h"
#include "host/report/tables/separated_cell.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/**
 * {"DeviceCache": {"b4-c2-6a-7f-d3-7a": {"Name": "Käfer 🎧", "Class": 5}, "aa-bb-cc-dd-ee-ff": {"Name": "Car"},
 * "00-00-00-00-00-00": {"Name": "nobody"}}, "Other": [1]}, written by Python's plistlib.
 */
QByteArray binary_list()
{
    return QByteArray::fromBase64(
        "YnBsaXN0MDDSAQIDEFtEZXZpY2VDYWNoZVVPdGhlctMEBQYHCgxfEBEwMC0wMC0wMC0wMC0wMC0wMF8QEWFhLWJiLWNjLWRkLWVl"
        "LWZmXxARYjQtYzItNmEtN2YtZDMtN2HRCAlUTmFtZVZub2JvZHnRCAtTQ2Fy0g0IDg9VQ2xhc3MQBWgASwDkAGYAZQByACDYPN+n"
        "oREQAQgNGR8mOk5iZWpxdHh9g4WWmAAAAAAAAAEBAAAAAAAAABIAAAAAAAAAAAAAAAAAAACa");
}

QString shown(const std::optional<QByteArray> &text)
{
    return text ? u'"' + QString::fromUtf8(*text) + u'"' : u"none"_s;
}

preferences_names names_in(const QByteArray &list)
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(u"list"_s);
    write_file(file, list);
    return preferences_names(file);
}

} // namespace

/** How single values are read and shown. */
Q_DECLARE_METATYPE(cell)
Q_DECLARE_METATYPE(std::optional<qint64>)

class test_report_values : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void addresses_data();
    void addresses();
    void log_lines_data();
    void log_lines();
    void formulas_data();
    void formulas();
    void quoting_data();
    void quoting();
    void ranks();
    void counters_of_a_row();
    void counters_data();
    void counters();
    void readings_data();
    void readings();
    void preferences_data();
    void preferences();
    void preferences_that_unfold();
    void markup_data();
    void markup();
};

void test_report_values::addresses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("address"); // bytes, kind and whether it joins; empty: no address

    // clang-format off
    QTest::newRow("public")         << QByteArray("Public B4:C2:6A:7F:D3:7A") << u"b4:c2:6a:7f:d3:7a public joins"_s;
    QTest::newRow("dashes")         << QByteArray("b4-c2-6a-7f-d3-7a")        << u"b4:c2:6a:7f:d3:7a public joins"_s;
    QTest::newRow("no separators")  << QByteArray(" B4C26A7FD37A ")           << u"b4:c2:6a:7f:d3:7a public joins"_s;
    QTest::newRow("zeros")          << QByteArray("Public 00:00:00:00:00:00") << u"00:00:00:00:00:00 public"_s;
    QTest::newRow("static")         << QByteArray("Random C0:00:00:00:00:01") << u"c0:00:00:00:00:01 static"_s;
    QTest::newRow("resolvable")     << QByteArray("random 7f:00:00:00:00:01") << u"7f:00:00:00:00:01 resolvable"_s;
    QTest::newRow("non-resolvable") << QByteArray("Random 3F:00:00:00:00:01") << u"3f:00:00:00:00:01 non-resolvable"_s;
    QTest::newRow("reserved")       << QByteArray("Random 80:00:00:00:00:01") << u"80:00:00:00:00:01 reserved"_s;
    QTest::newRow("too short")      << QByteArray("Public B4:C2:6A:7F:D3")    << QString();
    QTest::newRow("eleven digits")  << QByteArray("B4C26A7FD37")              << QString();
    QTest::newRow("thirteen digits") << QByteArray("B4C26A7FD37A0")           << QString();
    QTest::newRow("too long")       << QByteArray("Public B4:C2:6A:7F:D3:7A:00") << QString();
    QTest::newRow("another word")   << QByteArray("Other B4:C2:6A:7F:D3:7A")  << QString();
    QTest::newRow("empty")          << QByteArray("")                         << QString();
    // clang-format on
}

void test_report_values::addresses()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, address);
    const std::optional<device_address> parsed = parse_device_address(text);
    QString found;
    if (parsed)
        found = QString::fromLatin1(parsed->bytes) + u' ' + parsed->kind()
                + (parsed->joins_sources() ? u" joins"_s : QString());
    QCOMPARE(found, address);
}

void test_report_values::log_lines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("fields"); // name, identifier, rssi, aid

    // clang-format off
    QTest::newRow("found device")
        << QByteArray("May 17 12:11:05 p s[1] <Notice>: BLE device found: SFDevice ID 1A, IDS 2, RSSI -60, Nm 'Car, front', Md 'a1,1', AID 7F, PairedBT")
        << u"\"Car, front\" \"1A\" \"-60\" \"7F\" paired"_s;
    QTest::newRow("active device") << QByteArray("<Notice>: Connected active device: Endpoint 1, PI 83:52, Nm 'O'Neil's', Md 'x'")
                                   << u"\"O'Neil's\" \"83:52\" none none"_s;
    QTest::newRow("escapes")       << QByteArray(R"(BLE device found: SFDevice ID 1, Nm '\M-p\M^_\M^N\M-''))") << u"\"🎧\" \"1\" none none"_s;
    QTest::newRow("other escapes") << QByteArray(R"(BLE device found: SFDevice ID 1, Nm 'a\\b\^Ic\q')") << u"\"a\\b\tc\\q\" \"1\" none none"_s;
    QTest::newRow("cut in an escape") << QByteArray(R"(BLE device found: SFDevice ID 1, Nm 'a\M-)") << u"\"a\\M-\" \"1\" none none"_s;
    QTest::newRow("nothing")       << QByteArray("BLE device found:") << u"none none none none"_s;
    QTest::newRow("name before a model")   << QByteArray("x, Nm 'a', Md 'b', c', AID 7") << u"\"a\" none none \"7\""_s;
    QTest::newRow("name before an AID")    << QByteArray("x, Nm 'a', b', AID 7F") << u"\"a', b\" none none \"7F\""_s;
    QTest::newRow("name before a pairing") << QByteArray("x, Nm 'a', b', PairedBT") << u"\"a', b\" none none none paired"_s;
    QTest::newRow("name before an SSID")   << QByteArray("x, Nm 'a', b', SSID c'") << u"\"a', b\" none none none"_s;
    QTest::newRow("the nearest end")       << QByteArray("x, Nm 'a', SSID b', PairedBT, Md 'c', Md 'd'") << u"\"a\" none none none paired"_s;
    QTest::newRow("name without an end")   << QByteArray("x, Nm 'a b") << u"\"a b\" none none none"_s;
    QTest::newRow("an identifier alone")   << QByteArray("SFDevice ID 1A") << u"none \"1A\" none none"_s;
    QTest::newRow("a name alone")          << QByteArray(", Nm 'a'") << u"\"a\" none none none"_s;
    QTest::newRow("empty")                 << QByteArray() << u"none none none none"_s;
    QTest::newRow("two names")             << QByteArray("x, Nm 'a', Md 'b', Nm 'c', Md 'd'") << u"\"a\" none none none"_s;
    QTest::newRow("parts in a name")       << QByteArray("x SFDevice ID 1, Nm 'a, RSSI 5, SFDevice ID 2, AID 3', Md 'm', RSSI -60, AID 7") << u"\"a, RSSI 5, SFDevice ID 2, AID 3\" \"2\" \"-60\" \"7\""_s;
    QTest::newRow("both identifiers")      << QByteArray("x, PI 83:52, SFDevice ID 1A") << u"none \"1A\" none none"_s;
    QTest::newRow("blanks around parts")   << QByteArray("x SFDevice ID  1A , RSSI  -60 ") << u"none \"1A\" \"-60\" none"_s;
    QTest::newRow("nothing in a part")     << QByteArray("x SFDevice ID , RSSI , Nm '', Md 'a'") << u"\"\" \"\" \"\" none"_s;
    QTest::newRow("first and last escape") << QByteArray(R"(x, Nm '\^@\M^?\^?')") << QString(u"\"\0\ufffd\u007f\" none none none"_s);
    QTest::newRow("cut in an escape of two") << QByteArray(R"(x, Nm '\^)") << u"\"\\^\" none none none"_s;
    QTest::newRow("a backslash alone")     << QByteArray(R"(x, Nm '\)") << u"\"\\\" none none none"_s;
    // clang-format on
}

void test_report_values::log_lines()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, fields);
    const device_line read = read_device_line(line);
    QCOMPARE(shown(read.name) + u' ' + shown(read.identifier) + u' ' + shown(read.rssi) + u' ' + shown(read.aid)
                 + (read.is_paired ? u" paired"_s : QString()),
             fields);
}

void test_report_values::formulas_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("is_formula");

    // clang-format off
    QTest::newRow("equals")          << QByteArray("=1+1")               << true;
    QTest::newRow("plus")            << QByteArray("+1")                 << true;
    QTest::newRow("minus")           << QByteArray("-1")                 << true;
    QTest::newRow("at")              << QByteArray("@SUM(1)")            << true;
    QTest::newRow("tab")             << QByteArray("\tx")                << true;
    QTest::newRow("carriage return") << QByteArray("\rx")                << true;
    QTest::newRow("line end")        << QByteArray("\nx")                << true;
    QTest::newRow("behind blanks")   << QByteArray("  =1")               << true;
    QTest::newRow("hard blank")      << QByteArray("\xC2\xA0=1")         << true;
    QTest::newRow("wide blank")      << QByteArray("\xE3\x80\x80=1")     << true;
    QTest::newRow("zero width")      << QByteArray("\xE2\x80\x8B=1")     << true;
    QTest::newRow("behind a NUL")    << QByteArray("\0=1", 3)            << true;
    QTest::newRow("full width")      << QByteArray("\xEF\xBC\x9D""1+1")  << true;
    QTest::newRow("in the middle")   << QByteArray("a=1")                << false;
    QTest::newRow("quote")           << QByteArray("'=1")                << false;
    QTest::newRow("blanks")          << QByteArray("  ")                 << false;
    QTest::newRow("empty")           << QByteArray("")                   << false;
    // clang-format on
}

void test_report_values::formulas()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, is_formula);
    QCOMPARE(looks_like_formula(text), is_formula);
    QCOMPARE(make_cell(cell::of_text(text), false).text, is_formula ? '\'' + text : text);
    QCOMPARE(make_cell(cell::of_text(text), true).text, text);
}

void test_report_values::quoting_data()
{
    QTest::addColumn<QByteArray>("cell");
    QTest::addColumn<QByteArray>("in_csv");
    QTest::addColumn<QByteArray>("in_tsv");

    // clang-format off
    QTest::newRow("plain")    << QByteArray("a b")  << QByteArray("a b")        << QByteArray("a b");
    QTest::newRow("comma")    << QByteArray("a,b")  << QByteArray("\"a,b\"")    << QByteArray("a,b");
    QTest::newRow("tab")      << QByteArray("a\tb") << QByteArray("a\tb")       << QByteArray("\"a\tb\"");
    QTest::newRow("quote")    << QByteArray("a\"b") << QByteArray("\"a\"\"b\"") << QByteArray("\"a\"\"b\"");
    QTest::newRow("line end") << QByteArray("a\nb") << QByteArray("\"a\nb\"")   << QByteArray("\"a\nb\"");
    // clang-format on
}

void test_report_values::quoting()
{
    QFETCH(QByteArray, cell);
    QFETCH(QByteArray, in_csv);
    QFETCH(QByteArray, in_tsv);
    QByteArray csv;
    append_quoted(csv, cell, ',');
    QCOMPARE(csv, in_csv);
    QByteArray tsv;
    append_quoted(tsv, cell, '\t');
    QCOMPARE(tsv, in_tsv);
}

void test_report_values::ranks()
{
    constexpr qint64 beyond_32_bits = qint64(1) << 32;
    counter_ranks ranks;
    for (const qint64 counter : {qint64(5), qint64(9), qint64(-2), beyond_32_bits, qint64(9), qint64(1)})
        ranks.add(counter);
    ranks.add(std::nullopt);
    ranks.sort();
    QCOMPARE(ranks.rank_of(beyond_32_bits), std::optional<qint64>(1));
    QCOMPARE(ranks.rank_of(9), std::optional<qint64>(2));
    QCOMPARE(ranks.rank_of(5), std::optional<qint64>(4));
    QCOMPARE(ranks.rank_of(1), std::optional<qint64>(5));
    QCOMPARE(ranks.rank_of(-2), std::optional<qint64>(6));
    QCOMPARE(ranks.rank_of(std::nullopt), std::optional<qint64>());
}

/** With its write-ahead log, else in the evidence, else in the result. */
void test_report_values::counters_of_a_row()
{
    const QTemporaryDir folder;
    const sqlite_database database(folder.filePath(u"result"_s), sqlite_database::access::create);
    sqlite_statement row(database, "SELECT 5 AS last_seen_time, 6 AS last_connection_time");
    QVERIFY(row.next());
    host_values host;
    QCOMPARE(counters_of(row, host).seen, std::optional<qint64>(5));
    QCOMPARE(counters_of(row, host).connected, std::optional<qint64>(6));
    host.last_seen_time = cell::of_integer(7);
    host.last_connection_time = cell::of_integer(8);
    QCOMPARE(counters_of(row, host).seen, std::optional<qint64>(7));
    QCOMPARE(counters_of(row, host).connected, std::optional<qint64>(8));
    host.is_changed_by_log = true;
    host.with_log = {9, {}};
    QCOMPARE(counters_of(row, host).seen, std::optional<qint64>(9));
    QCOMPARE(counters_of(row, host).connected, std::optional<qint64>());
    sqlite_statement other(database, "SELECT 1");
    QVERIFY(other.next());
    QCOMPARE(counters_of(other, host_values()).seen, std::optional<qint64>());
}

void test_report_values::counters_data()
{
    QTest::addColumn<cell>("value");
    QTest::addColumn<std::optional<qint64>>("counter");

    const std::optional<qint64> none;
    // clang-format off
    QTest::newRow("integer")    << cell::of_integer(12)    << std::optional<qint64>(12);
    QTest::newRow("text")       << cell::of_text("12")     << std::optional<qint64>(12);
    QTest::newRow("zero")       << cell::of_integer(0)     << none;
    QTest::newRow("text of 0")  << cell::of_text("0")      << none;
    QTest::newRow("a word")     << cell::of_text("x")      << none;
    QTest::newRow("nothing")    << cell()                  << none;
    // clang-format on
}

void test_report_values::counters()
{
    QFETCH(const cell, value);
    QFETCH(const std::optional<qint64>, counter);
    QCOMPARE(counter_of(value), counter);
}

void test_report_values::readings_data()
{
    QTest::addColumn<qint64>("counter");
    QTest::addColumn<QByteArray>("readings");

    const auto unix_time = [](const char *utc) -> QByteArray {
        return QByteArray(R"({"as":"seconds since 1970","utc":")") + utc + "\"}";
    };
    const auto apple_time = [](const char *utc) -> QByteArray {
        return QByteArray(R"({"as":"seconds since 2001","utc":")") + utc + "\"}";
    };
    // clang-format off
    QTest::newRow("small")             << qint64(395626)     << QByteArray("[]");
    QTest::newRow("before the first")  << qint64(299999999)  << QByteArray("[]");
    QTest::newRow("first of 2001")     << qint64(300000000)  << QByteArray("[" + apple_time("2010-07-05T05:20:00Z") + "]");
    QTest::newRow("last of 2001 alone") << qint64(999999999) << QByteArray("[" + apple_time("2032-09-09T01:46:39Z") + "]");
    QTest::newRow("both")              << qint64(1000000000) << QByteArray("[" + unix_time("2001-09-09T01:46:40Z") + "," + apple_time("2032-09-09T01:46:40Z") + "]");
    QTest::newRow("last of 2001")      << qint64(1104451199) << QByteArray("[" + unix_time("2004-12-30T23:59:59Z") + "," + apple_time("2035-12-31T23:59:59Z") + "]");
    QTest::newRow("behind it")         << qint64(1104451200) << QByteArray("[" + unix_time("2004-12-31T00:00:00Z") + "]");
    QTest::newRow("last of 1970")      << qint64(2082758399) << QByteArray("[" + unix_time("2035-12-31T23:59:59Z") + "]");
    QTest::newRow("too large")         << qint64(2082758400) << QByteArray("[]");
    QTest::newRow("negative")          << qint64(-1)         << QByteArray("[]");
    QTest::newRow("largest")           << std::numeric_limits<qint64>::max() << QByteArray("[]");
    // clang-format on
}

void test_report_values::readings()
{
    QFETCH(const qint64, counter);
    QFETCH(const QByteArray, readings);
    QCOMPARE(counter_readings(counter), readings);
    QCOMPARE(counter_readings(std::nullopt), "[]");
}

void test_report_values::preferences_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("names"); // of the two addresses, or the problem

    const QByteArray start = "<?xml version='1.0'?><!DOCTYPE plist><plist version='1.0'><dict><key>x</key><array/>";
    const QByteArray device = "<key>DeviceCache</key><dict><key>B4:C2:6A:7F:D3:7A</key>";
    const QByteArray end = "</dict></dict></plist>";
    const QString no_list = u"it is no property list with a dictionary at its top"_s;

    // clang-format off
    QTest::newRow("XML")              << QByteArray(start + device + "<dict><key>Class</key><integer>5</integer><key>Name</key><string>a &amp; b</string></dict>" + end)
                                      << u"a & b, none"_s;
    QTest::newRow("two names")        << QByteArray(start + device + "<dict><key>Name</key><string>one</string></dict><key>b4c26a7fd37a</key><dict><key>Name</key><string>two</string></dict>" + end)
                                      << u"one, none"_s;
    QTest::newRow("name is a number") << QByteArray(start + device + "<dict><key>Name</key><integer>5</integer></dict>" + end) << u"none, none"_s;
    QTest::newRow("device is a text") << QByteArray(start + device + "<string>Name</string>" + end) << u"none, none"_s;
    QTest::newRow("no cache")         << QByteArray(start + "</dict></plist>")                      << u"none, none"_s;
    QTest::newRow("cut off")          << QByteArray(start + device + "<dict>")                      << no_list;
    QTest::newRow("array at the top") << QByteArray("<plist><array/></plist>")                      << no_list;
    QTest::newRow("nothing")          << QByteArray()                                               << no_list;
    QTest::newRow("binary")           << binary_list()                                              << u"Käfer 🎧, Car"_s;
    QTest::newRow("binary, cut off")  << binary_list().chopped(1)                                   << no_list;
    QTest::newRow("trailer alone")    << QByteArray("bplist00" + QByteArray(32, '\xff'))            << no_list;
    // clang-format on
}

void test_report_values::preferences()
{
    QFETCH(QByteArray, list);
    QFETCH(QString, names);
    const preferences_names read = names_in(list);
    const auto name = [&read](QByteArrayView address) {
        const QByteArray text = read.name_of({"Random B4:C2:6A:7F:D3:7A", "", address});
        return text.isNull() ? u"none"_s : QString::fromUtf8(text);
    };
    const QString found = name("Public B4:C2:6A:7F:D3:7A") + u", "_s + name("aa-bb-cc-dd-ee-ff");
    QCOMPARE(read.problem().isEmpty() ? found : read.problem(), names);
}

/** Every pair of a large dictionary refers to that dictionary: a small file, and a thousand million lookups. */
void test_report_values::preferences_that_unfold()
{
    constexpr int pairs = 60000;
    QByteArray list = "bplist00";
    QByteArray offsets;
    const auto begin_object = [&] {
        for (const int shift : {16, 8, 0})
            offsets.append(char(list.size() >> shift));
    };
    begin_object(); // 0: the top, {DeviceCache: 2}
    list.append("\xd1\x00\x01\x00\x02", 5);
    begin_object(); // 1
    list.append("\x5b"
                "DeviceCache");
    begin_object(); // 2: {address: 2, address: 2, …}
    list.append("\xdf\x12", 2);
    for (const int shift : {24, 16, 8, 0})
        list.append(char(pairs >> shift));
    list.append(QByteArray("\x00\x03", 2).repeated(pairs)).append(QByteArray("\x00\x02", 2).repeated(pairs));
    begin_object(); // 3
    list.append("\x5f\x10\x11"
                "b4-c2-6a-7f-d3-7a");
    const int table = int(list.size());
    list.append(offsets).append(QByteArray(6, '\0')).append("\x03\x02");
    for (const int number : {4, 0, table}) {
        list.append(4, '\0');
        for (const int shift : {24, 16, 8, 0})
            list.append(char(number >> shift));
    }
    const preferences_names read = names_in(list);
    QCOMPARE(read.problem(), u"it is no property list with a dictionary at its top"_s);
    QVERIFY(read.name_of({"b4-c2-6a-7f-d3-7a"}).isNull());
}

void test_report_values::markup_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("html");
    QTest::addColumn<QByteArray>("json");

    // clang-format off
    QTest::newRow("markup")    << QByteArray("<img src=x onerror='a\"b'>&") << QByteArray("&lt;img src=x onerror='a&quot;b'&gt;&amp;")
                               << QByteArray("\"\\u003cimg src=x onerror='a\\\"b'\\u003e\\u0026\"");
    QTest::newRow("comment")   << QByteArray("<!--")          << QByteArray("&lt;!--")           << QByteArray("\"\\u003c!--\"");
    QTest::newRow("terminal")  << QByteArray("\x1b]0;")       << QByteArray("\\u{1b}]0;")        << QByteArray("\"\\\\u{1b}]0;\"");
    QTest::newRow("direction") << QByteArray("\xE2\x80\xAE""a") << QByteArray("\\u{202e}a")      << QByteArray("\"\\\\u{202e}a\"");
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF""a") << QByteArray("\\u{feff}a")  << QByteArray("\"\\\\u{feff}a\"");
    QTest::newRow("backslash") << QByteArray("a\\b")          << QByteArray("a\\\\b")            << QByteArray("\"a\\\\\\\\b\"");
    QTest::newRow("no UTF-8")  << QByteArray("\xED\xA0\x80")  << QByteArray("x'eda080'") << QByteArray("\"x'eda080'\"");
    QTest::newRow("blanks")    << QByteArray("  a b ")        << QByteArray("<span class=\"blank\">  </span>a b<span class=\"blank\"> </span>")
                               << QByteArray("\"  a b \"");
    QTest::newRow("blanks alone") << QByteArray("  ")         << QByteArray("<span class=\"blank\">  </span>") << QByteArray("\"  \"");
    QTest::newRow("cut")       << QByteArray(4001, 'a')       << QByteArray(4000, 'a') + "\u2026 (cut; 4001 bytes)"
                               << '"' + QByteArray(4000, 'a') + "\u2026 (cut; 4001 bytes)\"";
    QTest::newRow("cut before a pair") << QByteArray(3999, 'a') + "\U0001F3A7" << QByteArray(3999, 'a') + "\u2026 (cut; 4003 bytes)"
                               << '"' + QByteArray(3999, 'a') + "\u2026 (cut; 4003 bytes)\"";
    // clang-format on
}

void test_report_values::markup()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, html);
    QFETCH(QByteArray, json);
    QCOMPARE(html_evidence(text), "<bdi>" + html + "</bdi>");
    QCOMPARE(html_shown(page_value(cell::of_text(text))), "<bdi>" + html + "</bdi>");
    QCOMPARE(page_json(page_value(cell::of_text(text))), json);
}

BLUETOOTH_LOGS_TEST(test_report_values, QCoreApplication)

#include "test_report_values.moc"
