// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/device_address.h"
#include "host/report/html_text.h"
#include "host/report/log_line.h"
#include "host/report/rank.h"
#include "host/report/separated_cell.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

sqlite_statement::cell text_cell(QByteArrayView bytes)
{
    sqlite_statement::cell cell;
    cell.kind = sqlite_statement::type::text;
    cell.bytes = bytes;
    return cell;
}

QString shown(const std::optional<QByteArray> &text)
{
    return text ? u'"' + QString::fromUtf8(*text) + u'"' : u"none"_s;
}

} // namespace

/** How single values are read and shown. */
class test_report_values : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void addresses_data();
    void addresses();
    void log_lines_data();
    void log_lines();
    void formulas_data();
    void formulas();
    void quoting_data();
    void quoting();
    void ranks();
    void markup_data();
    void markup();
};

void test_report_values::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

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
    QCOMPARE(make_cell(text_cell(text), false).text, is_formula ? '\'' + text : text);
    QCOMPARE(make_cell(text_cell(text), true).text, text);
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
    using list = QList<std::optional<qint64>>;
    QCOMPARE(ranks_of({5, 9, std::nullopt, 9, 1}), (list{3, 1, std::nullopt, 1, 4}));
    QCOMPARE(counter_of(text_cell("12")), std::optional<qint64>(12));
    QCOMPARE(counter_of(text_cell("0")), std::optional<qint64>());
    QCOMPARE(counter_of(text_cell("x")), std::optional<qint64>());
    QCOMPARE(plausible_time(395626), QString());
    QCOMPARE(plausible_time(1700000000), u"plausible as Unix time"_s);
    QCOMPARE(plausible_time(700000000), u"plausible as Apple time"_s);
}

void test_report_values::markup_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("html");
    QTest::addColumn<QByteArray>("json");

    // clang-format off
    QTest::newRow("markup")    << QByteArray("<img src=x onerror='a\"b'>&") << QByteArray("&lt;img src=x onerror=&#39;a&quot;b&#39;&gt;&amp;")
                               << QByteArray("\"\\u003cimg src=x onerror='a\\\"b'\\u003e\\u0026\"");
    QTest::newRow("comment")   << QByteArray("<!--")          << QByteArray("&lt;!--")           << QByteArray("\"\\u003c!--\"");
    QTest::newRow("terminal")  << QByteArray("\x1b]0;")       << QByteArray("\\u{1b}]0;")        << QByteArray("\"\\\\u{1b}]0;\"");
    QTest::newRow("direction") << QByteArray("\xE2\x80\xAE""a") << QByteArray("\\u{202e}a")      << QByteArray("\"\\\\u{202e}a\"");
    QTest::newRow("backslash") << QByteArray("a\\b")          << QByteArray("a\\\\b")            << QByteArray("\"a\\\\\\\\b\"");
    QTest::newRow("no UTF-8")  << QByteArray("\xED\xA0\x80")  << QByteArray("x&#39;eda080&#39;") << QByteArray("\"x'eda080'\"");
    // clang-format on
}

void test_report_values::markup()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, html);
    QFETCH(QByteArray, json);
    QCOMPARE(html_evidence(text), "<bdi>" + html + "</bdi>");
    QCOMPARE(html_cell(text_cell(text)), "<td><bdi>" + html + "</bdi></td>");
    QCOMPARE(page_json(text_cell(text)), json);
}

QTEST_GUILESS_MAIN(test_report_values)

#include "test_report_values.moc"
