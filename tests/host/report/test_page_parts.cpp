// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/findings.h"
#include "host/report/page/html_table.h"
#include "host/report/page/html_text.h"
#include "host/report/page/provenance.h"
#include "host/report/page/source_matrix.h"
#include "host/report/page/svg_parts.h"
#include "tests/host/report/report_text.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray data_of(const html_table &table)
{
    const QTemporaryDir folder;
    new_file file(folder.filePath(u"data"_s));
    table.add_data(file);
    file.commit();
    return content_of(folder.filePath(u"data"_s));
}

/** A column with a value for each row: digits become numbers, "-" is NULL. */
void add_column(html_table &table, const column_about &about, const QByteArrayList &values)
{
    page_column &column = table.add_column(about);
    for (const QByteArray &value : values) {
        bool is_number = false;
        const qint64 number = value.toLongLong(&is_number);
        column.add(value == "-" ? cell() : is_number ? cell::of_integer(number) : cell::of_text(value));
    }
}

/** Columns of every kind, in the order of no group. */
html_table table_of_columns()
{
    html_table table("rows", "Rows & <more>", "A <b>caption</b>.");
    add_column(table, {"number", "Number", "Report", "What <it> says."}, {"7", "12", "-"});
    add_column(table, {"text", "Text", "Plug-in", {}}, {"a", " <b>", "-"});
    add_column(table, {"none", "None", "Plug-in", {}}, {"-", "-", "-"});
    add_column(table, {"link", "Link", "Report", {}, false, "device"}, {"1", "2", "2"});
    add_column(table, {"hidden", "Hidden", "Host", {}, true}, {"x", "x", "y"});
    add_column(table, {"twin", "Twin", "Host", {}, false, {}, "text"}, {"a", " <b>", "-"});
    add_column(table, {"other_twin", "Other twin", "Host", {}, false, {}, "number"}, {"7", "12", "13"});
    add_column(table, {"<none> either", "None", "Host", {}}, {"-", "-", "-"});
    return table;
}

/** A device that these sources know, and those of them that have it paired or seen. */
joined_device device_in(const QList<int> &sources, const QList<int> &paired = {}, const QList<int> &seen = {})
{
    joined_device device;
    device.number = 1;
    device.sources = sources;
    for (const int source : sources) {
        device_appearance one;
        one.source = source;
        one.is_paired = paired.contains(source);
        one.table = one.is_paired || seen.contains(source) ? u"a table"_s : QString();
        device.appearances.append(one);
    }
    return device;
}

report_case case_of(int sources)
{
    report_case the_case{case_layout(u"/case"_s), {}, {}, {}, {}, {}};
    for (int number = 1; number <= sources; ++number) {
        report_source source;
        source.record.number = number;
        the_case.sources.append(source);
    }
    return the_case;
}

QByteArray matrix_of(int sources, const QList<joined_device> &devices)
{
    const QList<device_facts> facts = facts_of(devices);
    QList<const device_facts *> places;
    for (const device_facts &one : facts)
        places.append(&one);
    return source_matrix(case_of(sources), places);
}

device_appearance with(const char *found_in, const char *table = "", bool is_paired = false)
{
    device_appearance one;
    one.found_in = QLatin1StringView(found_in);
    one.table = QString::fromLatin1(table);
    one.is_paired = is_paired;
    return one;
}

joined_device with_all(const QList<device_appearance> &appearances)
{
    joined_device device;
    device.appearances = appearances;
    return device;
}

device_appearance with_address(const char *address, const char *icloud = "")
{
    device_appearance one;
    one.address = address;
    one.icloud_identifier = icloud;
    add_keys(one);
    return one;
}

using appearance_list = QList<device_appearance>;

} // namespace

/** What a page's sections are made of. */
class test_page_parts : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void tables();
    void rows_without_script();
    void matrix();
    void matrix_of_many();
    void texts_in_columns_data();
    void texts_in_columns();
    void values_data();
    void values();
    void names_in_pictures();
    void known_devices_data();
    void known_devices();
    void devices_that_join_nothing_data();
    void devices_that_join_nothing();
    void many_texts_of_a_device();
    void names_of_a_device();
    void words_of_a_command_line();
    void order_of_shared_devices();
    void devices_of_note();
};

void test_page_parts::tables()
{
    html_table opening = table_of_columns();
    opening.set_opens("link");
    opening.add_to_caption("More.");
    QCOMPARE(opening.title(), "Rows & <more>"_ba);
    QCOMPARE(opening.row_count(), 3);
    QByteArray text;
    for (const html_table &table : {table_of_columns(), opening, html_table("empty", "Empty", "Without a column.")})
        text += table.section() + data_of(table) + '\n';
    compare_with_text(u"tables.html"_s, text);
}

void test_page_parts::rows_without_script()
{
    for (const qsizetype rows : {200, 201}) {
        html_table table("rows", "Rows", {});
        add_column(table, {"a", "A", "Report", {}}, QByteArrayList(rows, "x"));
        const QByteArray html = table.section();
        QCOMPARE(html.count("<tr aria-rowindex"), 1 + 200);
        QCOMPARE(html.contains("Without script these are the first 200 of 201 rows."), rows > 200);
        const QByteArray count = "aria-rowcount=\"" + QByteArray::number(rows + 1) + '"';
        QVERIFY(html.contains(count));
        QVERIFY(html.contains("<tr aria-rowindex=\"201\"><td class=\"number\">200</td>"));
    }
}

void test_page_parts::matrix()
{
    joined_device named = device_in({0, 2, 3}, {0}, {2, 0});
    named.appearances[0].name = "A name of more columns than fit";
    joined_device other = device_in({2, 5}, {2, 5});
    other.number = 12;
    compare_with_text(u"matrix.html"_s, matrix_of(6, {named, other}));
}

/** No more than can be followed by eye; what is left out is said. */
void test_page_parts::matrix_of_many()
{
    QList<int> sources;
    for (int source = 0; source < 41; ++source)
        sources.append(source);
    const QByteArray left_out = " The first 40 of 41 sources are shown.";
    const QByteArray all = matrix_of(41, {device_in(sources.first(40), sources)});
    QCOMPARE(all.count("<rect class=\"point\""), 40);
    QVERIFY(!all.contains(left_out));
    const QByteArray many = matrix_of(41, {device_in(sources, sources)});
    QCOMPARE(many.count("<rect class=\"point\""), 40);
    QVERIFY(many.contains(left_out));
    const QList<joined_device> devices(21, device_in({0, 1}, {0, 1}));
    QCOMPARE(matrix_of(2, devices.first(20)).count("<rect class=\"point\""), 40);
    QCOMPARE(matrix_of(2, devices).count("<rect class=\"point\""), 40);
}

void test_page_parts::texts_in_columns_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("shown");

    // clang-format off
    QTest::newRow("empty")        << QByteArray("")         << 3 << u""_s;
    QTest::newRow("fits")         << QByteArray("abc")      << 3 << u"abc"_s;
    QTest::newRow("cut")          << QByteArray("abcd")     << 3 << u"ab…"_s;
    QTest::newRow("wide fits")    << QByteArray("客厅")     << 4 << u"客厅"_s;
    QTest::newRow("wide cut")     << QByteArray("客厅")     << 3 << u"客…"_s;
    QTest::newRow("half of one")  << QByteArray("a客厅")    << 3 << u"a…"_s;
    QTest::newRow("escape fits")  << QByteArray("a\\")      << 3 << u"a\\\\"_s;
    QTest::newRow("no UTF-8")     << QByteArray("\xff")     << 5 << u"x'ff'"_s;
    QTest::newRow("no UTF-8, cut") << QByteArray("\xff")    << 4 << u"x'f…"_s;
    // clang-format on
}

void test_page_parts::texts_in_columns()
{
    QFETCH(const QByteArray, text);
    QFETCH(const int, columns);
    QTEST(page_text(text, columns), "shown");
    QTEST(QString::fromUtf8(html_evidence(text, columns)).remove(u"<bdi>"_s).remove(u"</bdi>"_s), "shown");
}

void test_page_parts::values_data()
{
    QTest::addColumn<cell>("value");
    QTest::addColumn<QByteArray>("shown");

    const auto blob = [](QByteArrayView bytes) { return cell{cell::type::blob, 0, 0, bytes}; };
    static const QByteArray longest(1998, 'a');
    static const QByteArray too_long(5000, 'a');
    // clang-format off
    QTest::newRow("null")       << cell()                                   << QByteArray();
    QTest::newRow("empty")      << cell::of_text("")                        << QByteArray("");
    QTest::newRow("integer")    << cell::of_integer(-7)                     << QByteArray("-7");
    QTest::newRow("real")       << cell{cell::type::real, 0, 0.5, {}}       << QByteArray("0.5");
    QTest::newRow("blob")       << blob("ab")                               << QByteArray("x'6162'");
    QTest::newRow("empty blob") << blob("")                                 << QByteArray("x''");
    QTest::newRow("long blob")  << blob(longest)                            << "x'" + longest.toHex() + '\'';
    QTest::newRow("cut blob")   << blob(too_long)                           << QByteArray("x'" + QByteArray(2000, 'a').toHex()).first(4000) + "… (cut; 8003 bytes)";
    // clang-format on
}

void test_page_parts::values()
{
    QFETCH(const cell, value);
    QFETCH(const QByteArray, shown);
    QCOMPARE(page_value(value), shown);
    QCOMPARE(page_value(value).isNull(), shown.isNull());
}

void test_page_parts::names_in_pictures()
{
    QCOMPARE(svg_device_name(12, "<b>", 24), "12 &lt;b&gt;"_ba);
    QCOMPARE(svg_device_name(12, "", 24), "12 no name"_ba);
    QCOMPARE(svg_device_name(12, "abcd", 3), "12 ab…"_ba);
    QCOMPARE(svg_line("axis", 1, 2, 3, 4), "<line class=\"axis\" x1=\"1\" y1=\"2\" x2=\"3\" y2=\"4\"/>"_ba);
    QCOMPARE(svg_text(1, 2, "end", "<b>"), "<text x=\"1\" y=\"2\" text-anchor=\"end\"><b></text>"_ba);
}

void test_page_parts::known_devices_data()
{
    QTest::addColumn<appearance_list>("appearances");
    QTest::addColumn<QByteArray>("words"); // known as; lists; what write-ahead logs change

    device_appearance deleted = with("row", "devices");
    deleted.is_deleted_by_log = true;
    // clang-format off
    QTest::newRow("seen")           << appearance_list{with("row", "devices")} << QByteArray("seen; ; ");
    QTest::newRow("paired")         << appearance_list{with("row", "paired_devices", true)} << QByteArray("paired or in use; ; ");
    QTest::newRow("both")           << appearance_list{with("row", "devices"), with("row", "paired_devices", true)} << QByteArray("paired or in use, seen; ; ");
    QTest::newRow("listed")         << appearance_list{with("preferences"), with("registry"), with("preferences")} << QByteArray("listed; preferences | registry; ");
    QTest::newRow("paired by a list") << appearance_list{with("registry", "", true)} << QByteArray("paired or in use; registry; ");
    QTest::newRow("in the log")     << appearance_list{with("wal_added", "devices")} << QByteArray("seen, in a write-ahead log alone; ; only in the log");
    QTest::newRow("changed")        << appearance_list{with("row", "devices"), with("wal_changed_before", "devices"), with("wal_changed_after", "devices")} << QByteArray("seen; ; changed");
    QTest::newRow("deleted")        << appearance_list{deleted} << QByteArray("seen; ; deleted");
    QTest::newRow("all of it")      << appearance_list{deleted, with("wal_added", "devices"), with("wal_changed_after", "devices")} << QByteArray("seen; ; deleted | only in the log | changed");
    // clang-format on
}

void test_page_parts::known_devices()
{
    QFETCH(const appearance_list, appearances);
    const QList<joined_device> devices{with_all(appearances)};
    const QByteArray words = known_as(facts_of(devices).first()) + "; " + lists_of(devices.first()) + "; "
                             + log_changes_of(devices.first());
    QTEST(words, "words");
}

void test_page_parts::devices_that_join_nothing_data()
{
    QTest::addColumn<appearance_list>("appearances");
    QTest::addColumn<QByteArray>("reason");
    QTest::addColumn<QByteArray>("of_a_part"); // where not all of the case was read

    const QByteArray none = "it has no address, and it has no iCloud identifier";
    const QByteArray alone = "no other source has its public address or its iCloud identifier";
    const QByteArray perhaps =
        "no row that was read of another source has its public address or its iCloud identifier; "
        "not all of the case was read";
    // clang-format off
    QTest::newRow("nothing")    << appearance_list{with_address("")} << none << none;
    QTest::newRow("zeros")      << appearance_list{with_address("Public 00:00:00:00:00:00", "00-00")}
                                << QByteArray("its address is all zeros, and its iCloud identifier is all zeros") << QByteArray("its address is all zeros, and its iCloud identifier is all zeros");
    QTest::newRow("two reasons") << appearance_list{with_address("Random C0:00:00:00:00:01"), with_address("12"), with_address("12")}
                                << QByteArray("its address is random, and it has no iCloud identifier | its address is not of a form that is known, and it has no iCloud identifier")
                                << QByteArray("its address is random, and it has no iCloud identifier | its address is not of a form that is known, and it has no iCloud identifier");
    QTest::newRow("address")    << appearance_list{with_address(""), with_address("b4c26a7fd37a")} << alone << perhaps;
    QTest::newRow("identifier") << appearance_list{with_address("", "ic-1")} << alone << perhaps;
    // clang-format on
}

void test_page_parts::devices_that_join_nothing()
{
    QFETCH(const appearance_list, appearances);
    joined_device device = with_all(appearances);
    QTEST(why_not_joined(device, true), "reason");
    QTEST(why_not_joined(device, false), "of_a_part");
    device.shared_number = 1;
    QCOMPARE(why_not_joined(device, true), QByteArray());
}

void test_page_parts::many_texts_of_a_device()
{
    joined_device device;
    QByteArrayList names;
    for (int number = 1; number <= 20; ++number) {
        names.append(QByteArray::number(number));
        device.appearances.append(with_address(names.last().constData()));
        device.appearances.append(with_address(names.last().constData()));
    }
    device.appearances.append(with_address(""));
    QCOMPARE(list_of(device, &device_appearance::address), names);
    device.appearances.append(with_address("21"));
    QCOMPARE(list_of(device, &device_appearance::address), names + QByteArrayList{"…"});
    QCOMPARE(texts_of(device, &device_appearance::address), (names + QByteArrayList{"…"}).join(" | "));
}

/** What a log says in place of a name is none. */
void test_page_parts::names_of_a_device()
{
    joined_device device = with_all({with("row"), with("row"), with("row")});
    QCOMPARE(name_of(device), QByteArray());
    device.appearances[1].host_name = "<private>";
    QCOMPARE(name_of(device), QByteArray());
    QVERIFY(!is_named(device.appearances.at(1)));
    device.appearances[0].preferences_name = "of the preferences";
    QCOMPARE(name_of(device), "of the preferences"_ba);
    QVERIFY(is_named(device.appearances.at(0)));
    device.appearances[2].name = "of the result";
    QCOMPARE(name_of(device), "of the result"_ba);
    QVERIFY(is_named(device.appearances.at(2)));
    device.appearances[2].host_name = "of the evidence";
    QCOMPARE(name_of(device), "of the evidence"_ba);
    device.appearances[0].host_name = "the first";
    QCOMPARE(name_of(device), "the first"_ba);
    QVERIFY(is_named(device.appearances.at(0)));
}

/** Long ones may go on in the next line. */
void test_page_parts::words_of_a_command_line()
{
    report_case the_case = case_of(1);
    const QString longest_whole(60, u'w');
    the_case.heading = {{u"options"_s, QJsonArray{longest_whole, QString(61, u'x')}}};
    const QByteArray line = "<code><span class=\"whole\">bluetooth-logs</span> <span class=\"whole\">"
                            + longest_whole.toLatin1() + "</span> " + QByteArray(61, 'x') + "</code>";
    QVERIFY(provenance_section(the_case).contains(line));
}

/** The strongest links first, then those with a name. */
void test_page_parts::order_of_shared_devices()
{
    const QList<std::pair<int, const char *>> known{{0, ""}, {0, "a"}, {1, ""}, {1, "a"}, {2, ""}, {3, "a"}, {2, "a"}};
    QList<joined_device> devices;
    for (const auto &[paired, name] : known) {
        devices.append(device_in({0, 1, 2}, QList{0, 1, 2}.first(paired)));
        devices.last().number = devices.last().shared_number = devices.size();
        devices.last().appearances.first().name = name;
    }
    static const QRegularExpression number(u"<tr><td>(\\d+)</td>"_s);
    findings_form form;
    form.has_pages = false;
    const QString html = QString::fromUtf8(shared_devices_section(case_of(3), facts_of(devices), form));
    QStringList numbers;
    for (const QRegularExpressionMatch &match : number.globalMatch(html))
        numbers.append(match.captured(1));
    QCOMPARE(numbers.join(u' '), u"6 7 5 4 3 2 1"_s);
}

/** A name, a pairing, another source or a note is enough to come first; to be seen is not. */
void test_page_parts::devices_of_note()
{
    const joined_device device;
    joined_device shared;
    shared.shared_number = 1;
    const case_note note;
    QVERIFY(!(device_facts{&device, 1, false}.is_of_note()));
    QVERIFY((device_facts{&device, 1, true}.is_of_note()));
    QVERIFY((device_facts{&device, 1, false, {0}}.is_of_note()));
    QVERIFY(!(device_facts{&device, 1, false, {}, {}, {0}}.is_of_note()));
    QVERIFY((device_facts{&device, 1, false, {}, {}, {}, {&note}}.is_of_note()));
    QVERIFY((device_facts{&shared, 1, false}.is_of_note()));
}

BLUETOOTH_LOGS_TEST(test_page_parts, QCoreApplication)

#include "test_page_parts.moc"
