// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/files/system_error.h"
#include "host/report/reading/log_date.h"
#include "host/report/reading/row_columns.h"
#include "host/report/reading/vendor_list.h"
#include "host/report/tables/case_lists.h"
#include "host/report/tables/report_database.h"
#include "host/report/tables/separated_files.h"
#include "host/report/tables/shared_devices.h"
#include "host/report/tables/timeline.h"
#include "host/report/tables/workbook.h"
#include "host/source/source_kinds.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

/** A case of one source, without results: what a test writes below it is all that there is. */
class small_case
{
public:
    explicit small_case(QLatin1StringView type)
        : facts{case_layout(directory.path()), {}, {}, {}, {}, {}}
    {
        source_record record;
        record.number = 4;
        record.type = type;
        evidence_file log;
        log.path = u"system.log"_s;
        record.evidence.files.append(log);
        facts.sources.append({record, u"Anna's"_s, {}, false});
    }

    void write(const QString &name, const QByteArray &content) const
    {
        write_file(directory.filePath(u"Source4/"_s + name), content);
    }

    QTemporaryDir directory;
    report_case facts;
};

/** "time | meaning | device | locator" of each event. */
QStringList texts_of(const timeline &events)
{
    QStringList texts;
    for (const timeline_event &event : events.events)
        texts.append(QString::fromUtf8(event.datetime + " | " + event.description + " | " + event.name + " | "
                                       + event.locator + " | " + QByteArray::number(event.timestamp)));
    return texts;
}

QByteArray kept(int line, const QByteArray &text)
{
    return "{\"line\":" + QByteArray::number(line) + ",\"offset\":0,\"table\":\"devices\",\"text\":\"" + text + "\"}\n";
}

constexpr const char *phone_line =
    R"({"source":4,"list":"mobile_devices","address":"B4:C2:6A:7F:D3:7A","address_normal":"b4:c2:6a:7f:d3:7a",)"
    R"("names":["Car"],"kind":"classic","times":[{"name":"LastSeenTime","raw":737633465,"utc":"1993-05-17T10:11:05Z",)"
    R"("clock":"unknown","meaning":"LastSeenTime of the mobile list, if it is seconds since 1970"},{"name":"LastSeenTime",)"
    R"("raw":737633465,"utc":"2024-05-17T10:11:05Z","clock":"unknown",)"
    R"("meaning":"LastSeenTime of the mobile list, if it is seconds since 2001"},{"name":"LastConnected","raw":0,"utc":null,"clock":"utc",)"
    R"("meaning":"LastConnected of the registry"},{"name":"LastNameUpdate","raw":"x","utc":"2024-05-17T10:11:05.25Z",)"
    R"("clock":"utc","meaning":"LastNameUpdate of the preferences"}],"raw":{},"locator":{"file":"a.plist","path":"x"}})"
    "\n";

QStringList names_in(const QString &text, const QString &pattern)
{
    QStringList names;
    QRegularExpressionMatchIterator matches = QRegularExpression(pattern).globalMatch(text);
    while (matches.hasNext())
        names.append(matches.next().captured(1));
    return names;
}

/** The members that the columns of a group give, in their order. */
QStringList members(const QList<report_column> &columns, column_group group)
{
    QStringList names;
    for (const report_column &column : columns) {
        if (column.group == group && column.use != column_use::cells_only)
            names.append(QString::fromUtf8(column.name));
    }
    return names;
}

QJsonObject schema_of(const QString &definition)
{
    const QJsonObject schema = QJsonDocument::fromJson(content_of(REPORT_SCHEMA_FILE)).object();
    return schema.value("$defs"_L1).toObject().value(definition).toObject();
}

/** Of an object in a schema: sorted, as QJsonObject has them. */
QStringList properties_of(const QJsonObject &schema)
{
    return schema.value("properties"_L1).toObject().keys();
}

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

/** All members of a line: the groups that are objects of their own by their names. */
QStringList top_members(const QList<report_column> &columns)
{
    QStringList names = members(columns, column_group::source) + members(columns, column_group::line);
    for (const auto &[group, name] :
         {std::pair(column_group::locator, u"locator"_s), std::pair(column_group::plugin, u"plugin"_s),
          std::pair(column_group::host, u"host"_s)}) {
        if (!members(columns, group).isEmpty())
            names.append(name);
    }
    return sorted(names);
}

} // namespace

/** The files of a report from literal values. */
class test_report_tables : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void documented_columns();
    void columns_of_the_schema();
    void vendors_data();
    void vendors();
    void separated_values();
    void dates_of_lines_data();
    void dates_of_lines();
    void dates_without_year_data();
    void dates_without_year();
    void readings_of_counters_data();
    void readings_of_counters();
    void times_of_lists_data();
    void times_of_lists();
    void clocks_of_lists_data();
    void clocks_of_lists();
    void times_of_a_log_data();
    void times_of_a_log();
    void database();
    void database_that_is_not_finished();
    void workbook_that_is_not_finished();
};

/** docs/report-formats.md has a line for each value that the host reads. */
void test_report_tables::documented_columns()
{
    const QString docs = QString::fromUtf8(content_of(REPORT_DOCS_FILE));
    const QString table = docs.section(u"## Host fields"_s, 1).section(u"\n## "_s, 0, 0);
    QStringList documented;
    for (const QString &names : names_in(table, u"(?m)^\\| (`[^|]+`) \\|"_s))
        documented += names_in(names, u"`([a-z_]+)`"_s);
    QCOMPARE(sorted(documented), sorted(members(columns_of(host_columns()), column_group::host)));
    for (const line_column<report_row> &column : rank_columns())
        QVERIFY2(docs.contains(u'`' + QString::fromUtf8(column.about.name) + u'`'), column.about.name.constData());
}

void test_report_tables::columns_of_the_schema()
{
    const QJsonObject row = schema_of(u"device_row"_s);
    QCOMPARE(properties_of(row), top_members(row_cells({u"uuid"_s}).columns()));
    QCOMPARE(properties_of(row.value("properties"_L1).toObject().value("host"_L1).toObject()),
             sorted(members(columns_of(host_columns()), column_group::host)));
    const report_case none{case_layout(u"/nowhere"_s), {}, {}, {}, {}, {}};
    const QStringList definitions{u"evidence_file"_s, u"wal_change"_s, u"host_device"_s, u"unparsed_line"_s,
                                  u"salvaged_row"_s};
    const QList<case_list> lists = case_lists(none);
    QCOMPARE(lists.size(), definitions.size());
    for (qsizetype i = 0; i < lists.size(); ++i)
        QCOMPARE(properties_of(schema_of(definitions.at(i))), top_members(lists.at(i).columns));
    QCOMPARE(properties_of(schema_of(u"timeline_event"_s)), top_members(columns_of(timeline_columns())));
    const QJsonObject shared = schema_of(u"shared_device"_s).value("properties"_L1).toObject();
    QCOMPARE(properties_of(shared.value("appearances"_L1).toObject().value("items"_L1).toObject()),
             top_members(columns_of(shared_columns())));
}

void test_report_tables::vendors_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("vendor");

    const QByteArray known("OUI\n\nB4-C2-6A   (hex)\t\tSome & Sons\nB4C26A     (base 16)\t\tSome & Sons\n");
    // clang-format off
    QTest::newRow("known")           << known << QByteArray("Public B4:C2:6A:7F:D3:7A") << QByteArray("Some & Sons");
    QTest::newRow("not in the list") << known << QByteArray("Public B4:C2:6B:7F:D3:7A") << QByteArray();
    QTest::newRow("random")          << known << QByteArray("Random B4:C2:6A:7F:D3:7A") << QByteArray();
    QTest::newRow("no address")      << known << QByteArray("B4-C2-6A") << QByteArray();
    QTest::newRow("range of two")    << known + "B4-C2-6A   (hex)\t\tOthers\n" << QByteArray("b4c26a7fd37a") << QByteArray("Some & Sons or Others");
    QTest::newRow("named twice")     << known + known << QByteArray("b4c26a7fd37a") << QByteArray("Some & Sons");
    QTest::newRow("small letters")   << QByteArray(" b4:c2:6a\t(hex) A \r\n") << QByteArray("b4c26a7fd37a") << QByteArray("A");
    QTest::newRow("shorter range")   << QByteArray("B4-C2 (hex) A\n") << QByteArray() << QByteArray("refused");
    QTest::newRow("longer range")    << QByteArray("B4-C2-6A-7 (hex) A\n") << QByteArray() << QByteArray("refused");
    QTest::newRow("no sign of it")   << QByteArray("B4-C2-6A hex A\n") << QByteArray() << QByteArray("refused");
    QTest::newRow("names nobody")    << QByteArray("OUI\n") << QByteArray() << QByteArray("refused");
    // clang-format on
}

void test_report_tables::vendors()
{
    QFETCH(QByteArray, list);
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, vendor);
    const QTemporaryDir directory;
    write_file(directory.filePath(u"oui.txt"_s), list);
    QByteArray found;
    try {
        found = vendor_list(directory.filePath(u"oui.txt"_s))
                    .vendor_of_first_public({"", "Random C0:00:00:00:00:01", address});
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::refused);
        found = "refused";
    }
    QCOMPARE(found, vendor);
}

void test_report_tables::separated_values()
{
    QByteArray bytes;
    changed_cells changes;
    const QList<report_column> columns{{"source", column_group::source, {}},
                                       {"table", column_group::source, column_use::members_only},
                                       {"a,b", column_group::plugin},
                                       {"rowid", column_group::locator}};
    separated_file file([&bytes](QByteArrayView piece) { bytes += piece; }, u"x.csv"_s, {',', false, true}, columns,
                        changes);
    file.add({cell::of_integer(1), cell::of_text("unseen"), cell::of_text("=1,\"2\""), cell()});
    file.add({cell(), cell(), {cell::type::blob, 0, 0, QByteArrayView("\0\xff", 2)}, {cell::type::real, 0, 0.5, {}}});
    QCOMPARE(bytes, "\xEF\xBB\xBFsource,\"a,b\",host_rowid\r\n1,\"'=1,\"\"2\"\"\",\r\n,x'00ff',0.5\r\n");
    QStringList changed;
    for (const changed_cell &cell : changes.named)
        changed.append(cell.file + u' ' + QString::number(cell.line) + u' ' + cell.column);
    QCOMPARE(changed, (QStringList{u"x.csv 2 a,b"_s, u"x.csv 3 a,b"_s}));
}

void test_report_tables::dates_of_lines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("date");

    // clang-format off
    QTest::newRow("log show")       << QByteArray("2024-05-17 12:11:05.123456+0200  p bluetoothd") << QByteArray("2024-05-17T12:11:05.123456+02:00");
    QTest::newRow("west")           << QByteArray("2024-05-17 12:11:05-0800 p")     << QByteArray("2024-05-17T12:11:05-08:00");
    QTest::newRow("UTC")            << QByteArray("2024-05-17T12:11:05Z p")         << QByteArray("2024-05-17T12:11:05Z");
    QTest::newRow("with a colon")   << QByteArray("2024-05-17T12:11:05+05:30")      << QByteArray("2024-05-17T12:11:05+05:30");
    QTest::newRow("before 2000")    << QByteArray("1999-12-31 23:59:59Z")           << QByteArray("1999-12-31T23:59:59Z");
    QTest::newRow("after 2999")     << QByteArray("3000-01-01 00:00:00Z")           << QByteArray();
    QTest::newRow("comma")          << QByteArray("2024-05-17 12:11:05,5+0200")     << QByteArray("2024-05-17T12:11:05.5+02:00");
    QTest::newRow("blank, zone")    << QByteArray("2024-05-17 12:11:05.123456789 +02:00 p") << QByteArray("2024-05-17T12:11:05.123456789+02:00");
    QTest::newRow("two blanks")     << QByteArray("2024-05-17 12:11:05  +0200")     << QByteArray();
    QTest::newRow("ten digits")     << QByteArray("2024-05-17 12:11:05.1234567890Z") << QByteArray();
    QTest::newRow("no digit")       << QByteArray("2024-05-17 12:11:05.Z")          << QByteArray();
    QTest::newRow("short zone")     << QByteArray("2024-05-17 12:11:05+020")        << QByteArray();
    QTest::newRow("no zone")        << QByteArray("2024-05-17 12:11:05 p")          << QByteArray();
    QTest::newRow("no such day")    << QByteArray("2024-02-30 12:11:05+0200 p")     << QByteArray();
    QTest::newRow("no such hour")   << QByteArray("2024-05-17 25:11:05+0200 p")     << QByteArray();
    QTest::newRow("longer zone")    << QByteArray("2024-05-17 12:11:05+02000 p")    << QByteArray();
    QTest::newRow("in the middle")  << QByteArray("x 2024-05-17 12:11:05+0200 p")   << QByteArray();
    QTest::newRow("without a year") << QByteArray("May 17 12:11:05 p")              << QByteArray();
    QTest::newRow("empty")          << QByteArray()                                 << QByteArray();
    // clang-format on
}

void test_report_tables::dates_of_lines()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, date);
    QCOMPARE(zoned_date(line), date);
}

void test_report_tables::dates_without_year_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("date"); // month day time; empty: none

    int month = 0;
    for (const char *name : {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"})
        QTest::newRow(name) << QByteArray(name) + " 17 12:11:05 p" << QString::number(++month) + u" 17 12:11:05"_s;
    // clang-format off
    QTest::newRow("one digit")       << QByteArray("May  7 12:11:05 p")   << u"5 7 12:11:05"_s;
    QTest::newRow("one blank")       << QByteArray("May 7 12:11:05")      << u"5 7 12:11:05"_s;
    QTest::newRow("first day")       << QByteArray("May  1 00:00:00")     << u"5 1 00:00:00"_s;
    QTest::newRow("last day")        << QByteArray("May 31 23:59:59")     << u"5 31 23:59:59"_s;
    QTest::newRow("fraction")        << QByteArray("May 17 12:11:05.123") << u"5 17 12:11:05"_s;
    QTest::newRow("day 0")           << QByteArray("May  0 12:11:05")     << u""_s;
    QTest::newRow("day 32")          << QByteArray("May 32 12:11:05")     << u""_s;
    QTest::newRow("no such hour")    << QByteArray("May 17 24:11:05")     << u""_s;
    QTest::newRow("no such month")   << QByteArray("Mai 17 12:11:05")     << u""_s;
    QTest::newRow("more digits")     << QByteArray("May 17 12:11:055")    << u""_s;
    QTest::newRow("small letter")    << QByteArray("may 17 12:11:05")     << u""_s;
    QTest::newRow("in the middle")   << QByteArray("x May 17 12:11:05")   << u""_s;
    QTest::newRow("empty")           << QByteArray()                      << u""_s;
    // clang-format on
}

void test_report_tables::dates_without_year()
{
    QFETCH(const QByteArray, line);
    const std::optional<yearless_date> date = date_without_year(line);
    QTEST(date ? u"%1 %2 %3"_s.arg(date->month).arg(date->day).arg(date->time.toString(Qt::ISODate)) : u""_s, "date");
}

void test_report_tables::readings_of_counters_data()
{
    QTest::addColumn<qint64>("counter");
    QTest::addColumn<QByteArray>("readings");

    // clang-format off
    QTest::newRow("small")         << qint64(395626)     << QByteArray("[]");
    QTest::newRow("both")          << qint64(1000000000) << QByteArray(R"([{"as":"seconds since 1970","utc":"2001-09-09T01:46:40Z"},{"as":"seconds since 2001","utc":"2032-09-09T01:46:40Z"}])");
    QTest::newRow("too early")     << qint64(299999999)  << QByteArray("[]");
    QTest::newRow("since 1970")    << qint64(1700000000) << QByteArray(R"([{"as":"seconds since 1970","utc":"2023-11-14T22:13:20Z"}])");
    QTest::newRow("since 2001")    << qint64(737633465)  << QByteArray(R"([{"as":"seconds since 2001","utc":"2024-05-17T10:11:05Z"}])");
    QTest::newRow("last of 2035")  << qint64(2082758399) << QByteArray(R"([{"as":"seconds since 1970","utc":"2035-12-31T23:59:59Z"}])");
    QTest::newRow("first of 2036") << qint64(2082758400) << QByteArray("[]");
    QTest::newRow("largest")       << std::numeric_limits<qint64>::max() << QByteArray("[]");
    // clang-format on
}

void test_report_tables::readings_of_counters()
{
    QFETCH(qint64, counter);
    QFETCH(QByteArray, readings);
    QCOMPARE(counter_readings(counter), readings);
}

void test_report_tables::times_of_lists_data()
{
    QTest::addColumn<int>("epoch");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QStringList>("left_out");

    const QString update =
        u"2024-05-17T10:11:05.250+00:00 | LastNameUpdate of the preferences | Car | a.plist x | 1715940665250000"_s;
    const QString never = u"left out of the timeline: 1 times that say never"_s;
    const QString no_epoch =
        u"left out of the timeline: 1 times of mobile lists whose start is not known: --mobile-epoch says it"_s;
    const QString seen = u" | LastSeenTime of the mobile list, taken as seconds since %1 | Car | a.plist x | "_s;
    // clang-format off
    QTest::newRow("not said") << 0    << QStringList{update} << QStringList{no_epoch, never};
    QTest::newRow("2001")     << 2001 << QStringList{u"2024-05-17T10:11:05+00:00"_s + seen.arg(2001) + u"1715940665000000"_s, update} << QStringList{never};
    QTest::newRow("1970")     << 1970 << QStringList{u"1993-05-17T10:11:05+00:00"_s + seen.arg(1970) + u"737633465000000"_s, update} << QStringList{never};
    // clang-format on
}

void test_report_tables::times_of_lists()
{
    QFETCH(int, epoch);
    QFETCH(QStringList, events);
    QFETCH(QStringList, left_out);
    const small_case the_case(macos_kind.name);
    the_case.write(u"host_devices.jsonl"_s, phone_line);
    timeline_options options;
    if (epoch != 0)
        options.mobile_epoch = epoch;
    const timeline found = read_timeline(the_case.facts, options);
    QCOMPARE(found.problems, QStringList());
    QCOMPARE(texts_of(found), events);
    QCOMPARE(found.left_out_texts(), left_out);
}

void test_report_tables::clocks_of_lists_data()
{
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<QString>("event"); // or why there is none

    const QString meaning = u" | Seen | Car | a x | "_s;
    const QString counted = u" | T of the mobile list, taken as seconds since 2001 | Car | a x | "_s;
    const QString beyond = u"left out of the timeline: 1 times of mobile lists that lie beyond the year 9000"_s;
    // clang-format off
    QTest::newRow("whole")           << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05Z","clock":"utc")") << u"2024-05-17T10:11:05+00:00"_s + meaning + u"1715940665000000"_s;
    QTest::newRow("microseconds")    << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05.123456Z","clock":"utc")") << u"2024-05-17T10:11:05.123+00:00"_s + meaning + u"1715940665123456"_s;
    QTest::newRow("nanoseconds")     << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05.1234567Z","clock":"utc")") << u"2024-05-17T10:11:05.123+00:00"_s + meaning + u"1715940665123456"_s;
    QTest::newRow("end of a second") << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05.9999999Z","clock":"utc")") << u"2024-05-17T10:11:05.999+00:00"_s + meaning + u"1715940665999999"_s;
    QTest::newRow("few digits")      << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05.5Z","clock":"utc")") << u"2024-05-17T10:11:05.500+00:00"_s + meaning + u"1715940665500000"_s;
    QTest::newRow("before 1970")     << QByteArray(R"("raw":1,"utc":"1969-12-31T23:59:59.25Z","clock":"utc")") << u"1969-12-31T23:59:59.250+00:00"_s + meaning + u"-750000"_s;
    QTest::newRow("with a zone")     << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05+05:30","clock":"utc")") << u"2024-05-17T10:11:05+05:30"_s + meaning + u"1715920865000000"_s;
    QTest::newRow("west")            << QByteArray(R"("raw":1,"utc":"2024-05-17T10:11:05-03:30","clock":"utc")") << u"2024-05-17T10:11:05-03:30"_s + meaning + u"1715953265000000"_s;
    QTest::newRow("never")           << QByteArray(R"("raw":0,"utc":null,"clock":"utc")") << u"left out of the timeline: 1 times that say never"_s;
    QTest::newRow("the start")       << QByteArray(R"("raw":0,"utc":null,"clock":"unknown")") << u"2001-01-01T00:00:00+00:00"_s + counted + u"978307200000000"_s;
    QTest::newRow("before it")       << QByteArray(R"("raw":-1,"utc":null,"clock":"unknown")") << beyond;
    QTest::newRow("last")            << QByteArray(R"("raw":221356800000,"utc":null,"clock":"unknown")") << u"9015-07-10T00:00:00+00:00"_s + counted + u"222335107200000000"_s;
    QTest::newRow("beyond it")       << QByteArray(R"("raw":221356800001,"utc":null,"clock":"unknown")") << beyond;
    QTest::newRow("no number")       << QByteArray(R"("raw":"1","utc":null,"clock":"unknown")") << u"left out of the timeline: 1 times of mobile lists whose start is not known: --mobile-epoch says it"_s;
    // clang-format on
}

void test_report_tables::clocks_of_lists()
{
    QFETCH(const QByteArray, time);
    const small_case the_case(macos_kind.name);
    the_case.write(u"host_devices.jsonl"_s,
                   R"({"list":"x","address":"y","names":["Car"],"times":[{"name":"T","meaning":"Seen",)" + time
                       + R"(}],"locator":{"file":"a","path":"x"}})"
                         "\n");
    timeline_options options;
    options.mobile_epoch = 2001;
    const timeline found = read_timeline(the_case.facts, options);
    QTEST((texts_of(found) + found.left_out_texts()).join(u", "_s), "event");
}

void test_report_tables::times_of_a_log_data()
{
    QTest::addColumn<bool>("is_placed");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QStringList>("left_out");

    const QString zoned =
        u"2024-05-17T12:11:05.999999+02:00 | Line of a log | Car | system.log line 4 | 1715940665999999"_s;
    // clang-format off
    QTest::newRow("as it is") << false << QStringList{zoned}
                              << QStringList{u"left out of the timeline: 1 lines of logs without a date of a known form"_s,
                                             u"left out of the timeline: 3 lines of logs without year and zone: --log-year and --log-zone place them"_s};
    QTest::newRow("placed")   << true
                              << QStringList{u"2023-12-31T23:59:59-08:00 | Line of a log |  | system.log line 1 | 1704095999000000"_s,
                                             u"2024-01-01T00:00:01-08:00 | Line of a log |  | system.log line 2 | 1704096001000000"_s,
                                             u"2024-02-29T01:00:00-08:00 | Line of a log |  | system.log line 3 | 1709197200000000"_s,
                                             zoned}
                              << QStringList{u"left out of the timeline: 1 lines of logs without a date of a known form"_s};
    // clang-format on
}

void test_report_tables::times_of_a_log()
{
    QFETCH(bool, is_placed);
    QFETCH(QStringList, events);
    QFETCH(QStringList, left_out);
    const small_case the_case(ios_uid_kind.name);
    const QByteArray first = kept(1, "Dec 31 23:59:59 p");
    the_case.write(u"ios_lines.jsonl"_s,
                   first + first /* words of both tables */ + kept(2, "Jan  1 00:00:01 p")
                       + kept(3, "Feb 29 01:00:00 p")
                       + kept(4, "2024-05-17 12:11:05.999999+0200 BLE device found: SFDevice ID 1A, Nm 'Car', Md 'a'")
                       + kept(5, "no date"));
    timeline_options options;
    if (is_placed) {
        options.log_year = 2023;
        options.log_zone = -8 * 3600;
    }
    const timeline found = read_timeline(the_case.facts, options);
    QCOMPARE(found.problems, QStringList());
    QCOMPARE(texts_of(found), events);
    QCOMPARE(found.left_out_texts(), left_out);
}

/** Columns that differ by their letter case alone, formulas and blobs stand there as they are. */
void test_report_tables::database()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"report.sqlite"_s);
    {
        report_database store(path);
        for (const QString &table : {u"sources"_s, u"shared"_s})
            store.begin_table(table,
                              {{"device"}, {"joined_by"}, {"device_name"}, {"source"}, {"host_preferences_name"}});
        for (const char *name : {"", "Car"})
            store.add({cell::of_integer(1), cell::of_text("public_address x"), cell::of_text(name), cell::of_integer(3),
                       cell::of_text("Zoé's")});
        store.begin_table(u"paired_devices"_s, {{"source"}, {"source_name"}, {"date"}});
        for (const char *date : {"Dec 31 23:59:59", "Jan  1 00:00:01"})
            store.add({cell::of_integer(3), cell::of_text("Anna's"), cell::of_text(date)});
        store.begin_table(u"devices"_s,
                          {{"source"}, {"source_name"}, {"device_name"}, {"uuid"}, {"UUID"}, {"Uuid"}, {"a\"b"}});
        store.add({cell::of_integer(3),
                   cell::of_text("Anna's"),
                   cell::of_text("=1+1"),
                   cell::of_text("U-1"),
                   {cell::type::blob, 0, 0, QByteArrayView("\0\xff", 2)},
                   cell::of_text("third"),
                   {cell::type::real, 0, 0.5, {}}});
        store.begin_table(u"host_devices"_s, {{"source"},
                                              {"source_name"},
                                              {"list"},
                                              {"address"},
                                              {"address_normal"},
                                              {"names"},
                                              {"is_paired"},
                                              {"host_file"},
                                              {"host_path"}});
        store.add({cell::of_integer(4), cell::of_text("PC"), cell::of_text("registry"), cell::of_text("b4c26a7fd37a"),
                   cell::of_text("b4:c2:6a:7f:d3:7a"), cell::of_text("Käfer"), cell::of_text("true"),
                   cell::of_text("SYSTEM"), cell::of_text("a\\b")});
        store.begin_table(u"timeline"_s,
                          {{"datetime"}, {"timestamp"}, {"timestamp_desc"}, {"source"}, {"address"}, {"locator"}});
        for (const auto &[time, meaning] :
             {std::pair("5", "LastSeen of the registry"), std::pair("7", "LastConnected of the registry"),
              std::pair("8", "last write of the device's key in the registry")})
            store.add({cell::of_text(time), cell::of_integer(QByteArray(time).toLongLong()), cell::of_text(meaning),
                       cell::of_integer(4), cell::of_text("b4:c2:6a:7f:d3:7a"), cell::of_text("SYSTEM a\\b")});
        store.commit();
    }
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files), QStringList{u"report.sqlite"_s});
    const sqlite_database written(path, sqlite_database::access::read_only);
    const auto rows_of = [&written](const char *sql) {
        QStringList rows;
        sqlite_statement row(written, sql);
        while (row.next()) {
            QStringList cells;
            for (int column = 0; column < row.column_count(); ++column)
                cells.append(row.column_type(column) == cell::type::null ? u"-"_s : row.text(column));
            rows.append(cells.join(u' '));
        }
        return rows;
    };
    QCOMPARE(rows_of("SELECT device_name, uuid, hex(UUID_2), Uuid_3, \"a\"\"b\" FROM devices"),
             QStringList{u"=1+1 U-1 00FF third 0.5"_s});
    QCOMPARE(rows_of("SELECT name, source, source_table FROM names WHERE names MATCH 'kafer'"),
             QStringList{u"Käfer 4 host_devices"_s});
    QCOMPARE(rows_of("SELECT source, source_table, name, address FROM v_named_devices"),
             (QStringList{u"3 devices =1+1 -"_s, u"4 host_devices Käfer b4:c2:6a:7f:d3:7a"_s}));
    QCOMPARE(rows_of("SELECT source, known_as FROM v_paired_devices"),
             (QStringList{u"3 table of paired devices"_s, u"3 table of paired devices"_s, u"4 registry list"_s}));
    QCOMPARE(rows_of("SELECT source, source_table, source_rowid, line_date, last_time, meaning FROM v_last_seen"),
             (QStringList{u"3 devices 1 - - -"_s, u"3 paired_devices 2 Jan  1 00:00:01 - -"_s,
                          u"3 paired_devices 1 Dec 31 23:59:59 - -"_s,
                          u"4 host_devices 1 - 7 LastConnected of the registry"_s}));
    QCOMPARE(rows_of("SELECT * FROM v_sources"), QStringList());
    QCOMPARE(rows_of("SELECT device, sources, appearances, source_numbers, name FROM v_shared_devices"),
             QStringList{u"1 1 2 3 Zoé's"_s});
}

/** It stands there when it is whole, whatever stood in its place; else nothing of it stays. */
void test_report_tables::database_that_is_not_finished()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"report.sqlite"_s);
    write_file(path + u".new"_s, "of a run that was killed");
    {
        report_database store(path);
        store.begin_table(u"sources"_s, {{"a\"b"}, {"A\"B"}, {"a\"b_2"}, {"a\"B"}});
        store.add({cell::of_integer(1), cell::of_integer(2), cell::of_integer(3), cell::of_integer(4)});
        QCOMPARE(tree_of(directory.path()), QStringList{u"report.sqlite.new"_s});
    }
    QCOMPARE(tree_of(directory.path()), QStringList());
    try {
        const report_database nowhere(directory.filePath(u"none/report.sqlite"_s));
        QFAIL("there is no such folder");
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::io);
        QCOMPARE(error.message(), QString(directory.filePath(u"none/report.sqlite"_s)
                                          + u" cannot be written: unable to open database file"_s));
    }
}

void test_report_tables::workbook_that_is_not_finished()
{
    if (!has_workbooks())
        QSKIP("built without libxlsxwriter");
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"report.xlsx"_s);
    const auto failure_at = [](const QString &file, const QString &table) -> QString {
        workbook_notes notes;
        try {
            const std::unique_ptr<table_store> book = make_workbook(file, notes);
            book->begin_table(table, {{"a"}});
            book->commit();
        } catch (const host_error &error) {
            return (error.kind() == error_kind::io ? QString() : u"other kind: "_s) + error.message();
        }
        return u"none"_s;
    };
    write_file(path + u".new"_s, "of a run that was killed");
    write_file(path + u".parts/part"_s, "of a run that was killed");
    const QString too_long(32, u't');
    QCOMPARE(failure_at(path, too_long),
             QString(path + u" cannot be written: libxlsxwriter takes no sheet "_s + too_long));
    QCOMPARE(tree_of(directory.path()), QStringList());
    const QString nowhere = directory.filePath(u"none/report.xlsx"_s);
    QCOMPARE(failure_at(nowhere, u"t"_s), QString(nowhere + u" cannot be written: "_s + system_error_text(ENOENT)));
    QCOMPARE(failure_at(path, too_long.chopped(1)), u"none"_s);
    QCOMPARE(tree_of(directory.path()), QStringList{u"report.xlsx"_s});
}

BLUETOOTH_LOGS_TEST(test_report_tables, QCoreApplication)

#include "test_report_tables.moc"
