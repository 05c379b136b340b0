// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/report/report_files.h"
#include "host/report/tables/report_table.h"
#include "host/report/tables/workbook.h"
#include "tests/host/report/laid_case.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using formats = QList<report_format>;
using report_change = std::function<void(const laid_case &the_case, report_options &options)>;

report_options options_of(const laid_case &the_case, const formats &wanted)
{
    report_options options;
    options.case_directory = the_case.directory();
    options.output = the_case.path(u"Report"_s);
    options.formats = wanted;
    return options;
}

/** The refusal of the report, without the place of the case. */
QString refusal_of(const laid_case &the_case, const report_options &options)
{
    try {
        write_report(options);
    } catch (const host_error &error) {
        return (error.kind() == error_kind::refused ? QString() : u"other kind: "_s)
               + error.message().replace(the_case.directory() + u'/', QString());
    }
    return {};
}

} // namespace

/** Which files a report has, where it is written and where it is not. */
class test_report_files : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void names_data();
    void names();
    void refusals_data();
    void refusals();
    void earlier_pages();
    void brief_alone();
    void many_named_devices();
    void named_device_behind_many_rows();
    void what_was_not_compared();
    void damaged_lists_data();
    void damaged_lists();
    void formats_of_cells();
    void notes_of_a_workbook();
    void tables_alone();
    void changed_cells_that_are_named();
};

void test_report_files::names_data()
{
    QTest::addColumn<formats>("wanted");
    QTest::addColumn<bool>("is_split");
    QTest::addColumn<bool>("is_brief");
    QTest::addColumn<QString>("files");

    const QString lists =
        u"devices.csv paired_devices.csv shared.csv evidence_files.csv containers.csv host_devices.csv "
        "unparsed_lines.csv salvage.csv"_s;
    const QString of_json = QString(lists)
                                .replace(u"csv"_s, u"jsonl"_s)
                                .replace(u"containers.jsonl"_s, u"containers.jsonl wal_changes.jsonl"_s);
    using format = report_format;
    // clang-format off
    QTest::newRow("page")        << formats{format::html}              << false << false << u"report.html"_s;
    QTest::newRow("pages")       << formats{format::html}              << true  << false << u"report.html report-source1.html report-source3.html report-source4.html report-source5.html"_s;
    QTest::newRow("brief")       << formats{format::html}              << false << true  << u"report.html brief.html"_s;
    QTest::newRow("brief alone") << formats{}                          << true  << true  << u"brief.html"_s;
    QTest::newRow("csv")         << formats{format::csv}               << true  << false << QString(lists + u" README.txt"_s);
    QTest::newRow("tsv")         << formats{format::tsv}               << false << false << QString(QString(lists).replace(u"csv"_s, u"tsv"_s) + u" README.txt"_s);
    QTest::newRow("jsonl")       << formats{format::jsonl}             << false << false << QString(of_json + u" README.txt"_s);
    QTest::newRow("timeline")    << formats{format::timeline}          << false << false << u"timeline.csv timeline.jsonl README.txt"_s;
    QTest::newRow("database")    << formats{format::sqlite}            << false << false << u"report.sqlite"_s;
    QTest::newRow("two")         << formats{format::sqlite, format::jsonl} << false << false << QString(of_json + u" report.sqlite README.txt"_s);
    // clang-format on
}

void test_report_files::names()
{
    QFETCH(const formats, wanted);
    QFETCH(const bool, is_split);
    QFETCH(const bool, is_brief);
    QFETCH(const QString, files);
    const laid_case the_case;
    report_options options = options_of(the_case, wanted);
    options.split = is_split;
    options.brief = is_brief;
    const report_outcome outcome = write_report(options);
    QCOMPARE(outcome.files.join(u' '), QString(files + u" report.json"_s));
    QStringList names = outcome.files;
    names.sort();
    QCOMPARE(QDir(options.output).entryList(QDir::Files | QDir::Hidden, QDir::Name), names);
}

void test_report_files::refusals_data()
{
    QTest::addColumn<report_change>("change");
    QTest::addColumn<QString>("refusal");

    // clang-format off
    QTest::newRow("none") << report_change([](const laid_case &, report_options &) {}) << QString();
    QTest::newRow("files that are there")
        << report_change([](const laid_case &the_case, report_options &) {
               write_file(the_case.path(u"Report/report.sqlite"_s), {});
               write_file(the_case.path(u"Report/report.html"_s), {});
               write_file(the_case.path(u"Report/another"_s), {});
           })
        << u"these files are there already, --force replaces them: Report/report.sqlite, Report/report.html"_s;
    QTest::newRow("replaced")
        << report_change([](const laid_case &the_case, report_options &options) {
               write_file(the_case.path(u"Report/report.html"_s), {});
               options.force = true;
           })
        << QString();
    QTest::newRow("a file for a folder")
        << report_change([](const laid_case &the_case, report_options &options) {
               write_file(the_case.path(u"Report"_s), {});
               options.force = true;
           })
        << u"Report is a link or no folder: no report is written there"_s;
    QTest::newRow("a link on the way")
        << report_change([](const laid_case &the_case, report_options &options) {
               QDir().mkpath(the_case.path(u"elsewhere"_s));
               QFile::link(the_case.path(u"elsewhere"_s), the_case.path(u"link"_s));
               options.output = the_case.path(u"link/Report"_s);
           })
        << u"link is a link or no folder: no report is written there"_s;
    QTest::newRow("in the evidence")
        << report_change([](const laid_case &, report_options &options) { options.output = u"/evidence/laptop/Report"_s; })
        << u"the report's folder lies in the evidence: /evidence/laptop/Report is inside /evidence/laptop"_s;
    QTest::newRow("no list of vendors")
        << report_change([](const laid_case &the_case, report_options &options) {
               write_file(the_case.path(u"oui.txt"_s), "B4-C2-6A Some\n");
               options.vendors = the_case.path(u"oui.txt"_s);
           })
        << u"--vendors: oui.txt names no vendor in the form of oui.txt"_s;
    // clang-format on
}

void test_report_files::refusals()
{
    QFETCH(const report_change, change);
    const laid_case the_case;
    report_options options = options_of(the_case, {report_format::html, report_format::sqlite});
    change(the_case, options);
    const QStringList before = tree_of(the_case.directory());
    const QString refusal = refusal_of(the_case, options);
    QTEST(refusal, "refusal");
    QCOMPARE(tree_of(the_case.directory()) == before, !refusal.isEmpty());
}

/** Pages of sources that a report has not would pass for its own. */
void test_report_files::earlier_pages()
{
    const laid_case the_case;
    const QStringList others{u"report-source.html"_s, u"report-source1.htm"_s, u"my report-source1.html"_s};
    for (const QString &name : others + QStringList{u"report-source9.html"_s, u"report-source12.html"_s})
        write_file(the_case.path(u"Report/"_s + name), {});
    report_options options = options_of(the_case, {report_format::html});
    write_report(options);
    QVERIFY(QFile::exists(the_case.path(u"Report/report-source9.html"_s)));
    options.force = true;
    write_report(options);
    QVERIFY(!QFile::exists(the_case.path(u"Report/report-source9.html"_s)));
    QVERIFY(!QFile::exists(the_case.path(u"Report/report-source12.html"_s)));
    for (const QString &name : others)
        QVERIFY2(QFile::exists(the_case.path(u"Report/"_s + name)), qPrintable(name));
}

void test_report_files::brief_alone()
{
    const laid_case the_case;
    report_options options = options_of(the_case, {});
    options.brief = true;
    write_report(options);
    const QByteArray page = content_of(the_case.path(u"Report/brief.html"_s));
    QVERIFY(page.contains("<p>No full report was written with it.</p>"));
    QVERIFY(page.contains("<strong>11</strong> devices"));
}

/** The first page of a case with a page for each source names so many of them; all are counted. */
void test_report_files::many_named_devices()
{
    const laid_case the_case;
    sqlite_file(the_case.path(u"Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s))
        .execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 150) INSERT INTO "
                 "devices(device_name, sf_device_id) SELECT 'name ' || i, 'many ' || i FROM n"_s);
    sqlite_file(the_case.path(u"Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s))
        .execute(u"INSERT INTO paired_devices(device_address) VALUES('B4:C2:6A:00:00:99')"_s);
    report_options options = options_of(the_case, {report_format::html});
    options.split = true;
    write_report(options);
    const QByteArray page = content_of(the_case.path(u"Report/report.html"_s));
    QVERIFY(page.contains("Paired or in use: 3")); // with or without a name
    QVERIFY(page.contains("Named devices: 159"));
    QVERIFY(page.contains("<p>And 139 more.</p>"));
    QVERIFY(content_of(the_case.path(u"Report/report-source4.html"_s)).contains("name 150"));
}

/** Neither rows without a name nor further rows of one device use up what the first page has room for. */
void test_report_files::named_device_behind_many_rows()
{
    const laid_case the_case;
    sqlite_file(the_case.path(u"Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s))
        .execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300) INSERT INTO "
                 "devices(device_name, sf_device_id) SELECT CASE WHEN i < 150 THEN 'same' WHEN i = 300 THEN 'the last' "
                 "END, CASE WHEN i < 150 THEN 'same' ELSE 'other ' || i END FROM n"_s);
    report_options options = options_of(the_case, {report_format::html});
    options.split = true;
    write_report(options);
    const QByteArray page = content_of(the_case.path(u"Report/report.html"_s));
    QVERIFY(page.contains("Named devices: 11"));
    QVERIFY(page.contains("<bdi>same</bdi>") && page.contains("<bdi>the last</bdi>"));
}

/** Only where all of a case was read it is said that nothing else joins a device. */
void test_report_files::what_was_not_compared()
{
    const laid_case the_case;
    const QString result = u"/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    write_file(the_case.path(u"Source5"_s + result), content_of(the_case.path(u"Source4"_s + result)));
    for (const QString &file : {u"manifest.json"_s, u"Source5/source.json"_s})
        the_case.replace(file, R"("status": "failed")", R"("status": "done")");
    report_options options = options_of(the_case, {report_format::html});
    QCOMPARE(write_report(options).shortcomings, QStringList());
    const QByteArray not_all = "no row that was read of another source has";
    const QByteArray all = "no other source has its public address";
    QVERIFY(content_of(the_case.path(u"Report/report.html"_s)).contains(not_all));
    for (const QString &file : {u"manifest.json"_s, u"Source1/source.json"_s})
        the_case.replace(file, R"("paired_devices": null)", R"("paired_devices": {})");
    options.force = true;
    QCOMPARE(write_report(options).shortcomings, QStringList());
    const QByteArray page = content_of(the_case.path(u"Report/report.html"_s));
    QVERIFY(page.contains(all) && !page.contains(not_all));
}

void test_report_files::damaged_lists_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<QString>("file");

    QTest::newRow("changes of a log") << 1 << u"wal_changes.jsonl"_s;
    QTest::newRow("devices of lists") << 3 << u"host_devices.jsonl"_s;
    QTest::newRow("lines without a row") << 4 << u"unparsed_lines.jsonl"_s;
    QTest::newRow("salvaged rows") << 1 << u"salvage.jsonl"_s;
}

/** Whatever a report holds, it says what of a list it could not read, once. */
void test_report_files::damaged_lists()
{
    QFETCH(const int, source);
    QFETCH(const QString, file);
    const laid_case the_case;
    the_case.replace(u"Source%1/%2"_s.arg(source).arg(file), "\n", "\nno JSON\n");
    const QString problem = u"source %1: %2 is damaged"_s.arg(source).arg(file);
    const QByteArray item = "<li>" + problem.toUtf8() + "</li>";
    report_options options = options_of(the_case, {report_format::html});
    options.force = true;
    QCOMPARE(write_report(options).shortcomings.count(problem), 1);
    QCOMPARE(content_of(options.output + u"/report.html"_s).count(item), 1);
    options.split = true;
    QCOMPARE(write_report(options).shortcomings.count(problem), 1);
    QCOMPARE(content_of(options.output + u"/report.html"_s).count(item), 1);
    QCOMPARE(content_of(options.output + u"/report-source%1.html"_s.arg(source)).count(item), 1);
    options.formats = {report_format::jsonl, report_format::sqlite};
    QCOMPARE(write_report(options).shortcomings.count(problem), 1);
}

void test_report_files::formats_of_cells()
{
    const laid_case the_case;
    report_options options = options_of(the_case, {report_format::csv, report_format::timeline});
    options.cells = {true, true};
    write_report(options);
    for (const char *name : {"devices", "shared", "host_devices", "timeline"}) {
        const QByteArray content = content_of(options.output + u'/' + QLatin1StringView(name) + u".csv"_s);
        QVERIFY2(content.startsWith("\xEF\xBB\xBF"), name);
        QVERIFY2(!content.contains(",'=") && content.contains(",="), name);
    }
}

void test_report_files::notes_of_a_workbook()
{
    if (!has_workbooks())
        QSKIP("built without libxlsxwriter");
    const laid_case the_case;
    const sqlite_file result(the_case.path(u"Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
    report_options options = options_of(the_case, {report_format::xlsx});
    QVERIFY(!write_report(options).notes.join(u' ').contains(u"xlsx"_s));
    result.execute(u"UPDATE devices SET model = 'a' || char(0) WHERE INT < 3"_s);
    result.execute(u"UPDATE devices SET model = printf('%40000d', 1) WHERE INT = 3"_s);
    options.force = true;
    const report_outcome outcome = write_report(options);
    QCOMPARE(outcome.files, QStringList({u"report.xlsx"_s, u"report.json"_s}));
    QCOMPARE(outcome.notes.mid(outcome.notes.size() - 2),
             QStringList(
                 {u"report.xlsx: 2 texts have \\u{0}, \\u{fffe} or \\u{ffff} for characters that no cell takes"_s,
                  u"report.xlsx: 1 texts are cut: no cell takes more than 32,767 characters"_s}));
}

/** A table alone has the bytes that its file has; of one source the lines of that source. */
void test_report_files::tables_alone()
{
    const laid_case the_case;
    const report_options options = options_of(the_case, {report_format::csv, report_format::tsv, report_format::jsonl});
    const report_outcome outcome = write_report(options);
    const auto table = [&the_case](const QString &name, const program_format &format,
                                   const std::optional<qint64> &source) {
        QByteArray bytes;
        const QStringList lacks = write_table({the_case.directory(), name, format, source},
                                              [&bytes](QByteArrayView piece) { bytes += piece; });
        return std::pair(bytes, lacks);
    };
    int compared = 0;
    for (const program_format &format : program_formats) {
        for (const QString &file : outcome.files) {
            const QString name = file.section(u'.', 0, 0);
            if (!file.endsWith(format.suffix) || name == u"shared"_s)
                continue;
            QCOMPARE(table(name, format, {}).first, content_of(options.output + u'/' + file));
            ++compared;
        }
    }
    QCOMPARE(compared, 7 + 7 + 8);
    const program_format &json = program_formats[2];
    const QString failed = u"source 5: failed"_s;
    const QString missing =
        u"source 5: its result database is missing: Source5/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    QCOMPARE(table(u"devices"_s, json, {}).second, QStringList({failed, missing}));
    QCOMPARE(table(u"salvage"_s, json, {}).second, QStringList{failed});
    QCOMPARE(table(u"devices"_s, json, 4).first.count('\n'), 4);
    QVERIFY(table(u"devices"_s, json, 4).first.startsWith("{\"source\":4,"));
    QCOMPARE(table(u"host_devices"_s, json, 3).first.count("{\"source\":3,"), 3);
    QCOMPARE(table(u"host_devices"_s, json, 3).first.count('\n'), 3);
    try {
        table(u"devices"_s, json, 2);
        QFAIL("there is no source 2");
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::refused);
        QCOMPARE(error.message(), u"the case has no source 2"_s);
    }
}

void test_report_files::changed_cells_that_are_named()
{
    changed_cells changes;
    for (int line = 1; line <= 1001; ++line)
        changes.add({u"a.csv"_s, line, u"b"_s, cell_change::apostrophe});
    QCOMPARE(changes.count, 1001);
    QCOMPARE(changes.named.size(), 1000);
    QCOMPARE(changes.named.last().line, 1000);
}

BLUETOOTH_LOGS_TEST(test_report_files, QCoreApplication)

#include "test_report_files.moc"
