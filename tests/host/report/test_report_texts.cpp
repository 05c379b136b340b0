// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/column_words.h"
#include "host/report/page/device_cards.h"
#include "host/report/page/evidence_section.h"
#include "host/report/page/findings.h"
#include "host/report/page/html_parts.h"
#include "host/report/page/log_timeline.h"
#include "host/report/page/page_head.h"
#include "host/report/page/provenance.h"
#include "host/report/reading/host_device_line.h"
#include "host/report/reading/row_columns.h"
#include "host/report/reading/salvage_line.h"
#include "host/report/reading/unparsed_line.h"
#include "host/report/reading/wal_change.h"
#include "host/report/report_readme.h"
#include "host/report/tables/container_list.h"
#include "host/report/tables/evidence_list.h"
#include "host/report/tables/shared_devices.h"
#include "host/report/tables/source_list.h"
#include "host/report/tables/timeline.h"
#include "tests/host/report/joined_rows.h"
#include "tests/host/report/report_text.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// A source of each kind, with everything that a page may say of one, once.
constexpr const char *records = R"([
{"number": 1, "name": "Laptop & <b>", "path": "/evidence/laptop", "type": "macOS", "driven_as": "macOS", "status": "done",
 "rows": {"devices": {"found": 1234, "announced": 1234, "stored": 1234}, "paired_devices": {"found": 2, "stored": 1}},
 "messages": [{"weight": "warning", "text": "a warning <i>"}, {"weight": "note", "text": "a note"}],
 "evidence": [
  {"path": "Library/Bluetooth/same.db", "state": "present", "copy_sha256": "aa",
   "before": {"size": 1234567, "modified": "2026-01-02T03:04:05Z", "sha256": "aa"}, "after": {"size": 1234567, "sha256": "aa"}},
  {"path": "Library/Bluetooth/changed.db", "state": "present",
   "before": {"size": 1, "sha256": "bb"}, "after": {"size": 2, "sha256": "cc"}},
  {"path": "gone.db", "state": "present", "before": {"size": 3, "sha256": "dd"}, "after": null},
  {"path": "large.db", "state": "refused", "reason": "it is <large>", "before": {"size": 4}, "after": {"size": 4}},
  {"path": "x.db.corrupt", "state": "present"},
  {"path": "odd.db.corrupt", "state": "unreadable", "reason": "permission denied"},
  {"path": "none-1.db", "state": "absent"}, {"path": "none-2.db", "state": "absent"}],
 "confinement": {"landlock": 3, "seccomp": true}, "host_devices": 1012,
 "result": {"path": "Source1/result", "sha256": "ee"}},
{"number": 3, "name": "Phone", "path": "/evidence/phone.zip", "type": "iOS_backup", "driven_as": "macOS", "status": "partial",
 "rows": {"devices": {"announced": 5, "stored": 5, "devices": 4}},
 "messages": [{"weight": "error", "text": "the file cannot be hashed: /evidence/phone.z01: it is damaged"}],
 "evidence": [{"path": "a.db", "state": "present", "before": {"size": 5, "sha256": "ff"}, "after": {"size": 5, "sha256": "ff"},
   "origin": {"path": "HomeDomain/a.db", "inode": 77, "modified": "2026-02-03T04:05:06Z"}},
  {"path": "b.db", "state": "present", "origin": {"path": "HomeDomain/b.db"}}],
 "container": {"kind": "archive", "format": "zip",
  "files": [{"path": "/evidence/phone.zip", "size": 2345678, "modified": "2026-03-04T05:06:07Z", "sha256": "gg"},
            {"path": "/evidence/phone.z01", "size": 6}, {"path": "/evidence/phone.z02", "size": 7}],
  "volume": {"number": 2, "offset": 1048576, "file_system": "ntfs", "name": "System"},
  "stored_hashes": {"md5": "hh", "sha1": "ii"}},
 "confinement": {"landlock": null, "seccomp": false}},
{"number": 4, "name": "PC", "path": "/evidence/pc", "type": "winOS", "status": "failed",
 "rows": {"devices": {"stored": null}}, "container": {"kind": "image", "format": "raw", "files": [],
  "volume": {"number": 1, "offset": 0}, "stored_hashes": {"sha1": "jj"}}}
])";

constexpr const char *heading = R"({
 "case_number": "2026/17 <x>", "examiner": "A. Nobody",
 "tool": {"version": "1.2.3", "commit": "abcdef", "sha256": "kk", "plugin": {"path": "/lib/plugin.so", "sha256": "ll"},
          "libraries": {"qt": "6.4", "sqlite": "3.40"}},
 "system": {"os": "Debian", "kernel": "linux 6", "host": "lab", "user": "somebody", "zone": "Europe/Berlin"},
 "options": ["extract", "-i", "/evidence/a folder whose name is so long that it may be cut between two lines"],
 "working_folder": "/work & play", "started": "2026-01-01T00:00:00Z", "finished": "2026-01-01T00:00:09Z"
})";

QJsonDocument parsed(const char *text)
{
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        qFatal("no JSON: %s", qPrintable(error.errorString()));
    return json;
}

report_case whole_case()
{
    report_case the_case{case_layout(u"/case"_s), parsed(heading).object(), QString(u'9').repeated(64), {}, {}, {}};
    for (const auto record : parsed(records).array()) {
        report_source source;
        source.record = source_record::from_json(record.toObject());
        source.name = source.record.name;
        the_case.sources.append(source);
    }
    case_note on_device;
    on_device.number = 1;
    on_device.time = u"2026-04-05T06:07:08Z"_s;
    on_device.author = u"A. Nobody"_s;
    on_device.device = u"B4:C2:6A:7F:D3:7A"_s;
    on_device.is_flag = true;
    on_device.text = u"seen <again>"_s;
    case_note on_row = on_device;
    on_row.number = 2;
    on_row.device.clear();
    on_row.row = noted_row{3, u"devices"_s, 17};
    on_row.is_flag = false;
    the_case.notes = std::make_shared<note_list>(QList{on_device, on_row});
    return the_case;
}

/** A case of which nothing but its sources is known. */
report_case bare_case()
{
    report_case the_case{case_layout(u"/case"_s), {}, {}, {}, {}, {}};
    report_source source;
    source.record.number = 1;
    source.record.status = source_status::done;
    source.name = u"Source1"_s;
    the_case.sources.append(source);
    return the_case;
}

/** An appearance in the source at place @p source. */
device_appearance appearance_in(int source, const char *table, const char *name, const char *address)
{
    device_appearance one;
    one.source = source;
    one.table = QString::fromLatin1(table);
    one.is_paired = one.table == u"paired_devices";
    one.name = one.host_name = name;
    one.address = address;
    return one;
}

QList<device_appearance> all_appearances(const report_case &the_case)
{
    const char *known = "Public B4:C2:6A:7F:D3:7A";
    QList<device_appearance> list{
        appearance_in(0, "devices", "Car, <front>", known),
        appearance_in(0, "paired_devices", "Car", known),
        appearance_in(1, "devices", "", known),
        appearance_in(2, "", "Desk", "b4-c2-6a-7f-d3-7b"),
        appearance_in(1, "paired_devices", "Headset", "Public B4:C2:6A:7F:D3:7B"),
        appearance_in(0, "devices", "", "Random C1:00:00:00:00:01"),
        appearance_in(0, "devices", "A name of more columns than a cell of the brief report has room for", ""),
        appearance_in(1, "devices", "", "Public 00:00:00:00:00:00"),
        appearance_in(1, "devices", "<private>", "of another form"),
    };
    list[0].uuid = "U-1";
    list[1].uuid = "U-1";
    list[1].icloud_identifier = "ic-1";
    list[1].preferences_name = "My car";
    list[1].resolved_address = "Random C0:00:00:00:00:09";
    list[2].icloud_identifier = "IC-1";
    list[2].vendor = "A vendor";
    list[2].address_kind = "public";
    list[2].notes = the_case.notes->of_device({"B4:C2:6A:7F:D3:7A"});
    list[3].found_in = "registry"_L1;
    list[3].is_paired = true;
    list[4].place.line = 12;
    list[5].uuid = "U-5";
    list[5].address_kind = "static";
    list[5].is_deleted_by_log = true;
    list[6].uuid = "U-6";
    list[6].found_in = "wal_added"_L1;
    list[7].uuid = "U-7";
    list[7].icloud_identifier = "0000";
    list[8].uuid = "U-8";
    list[8].found_in = "wal_changed_after"_L1;
    for (device_appearance &one : list)
        add_keys(one);
    return list;
}

/** With numbers for those that several sources know. */
QList<joined_device> devices_in(const report_case &the_case)
{
    QList<joined_device> devices = joined_rows(all_appearances(the_case));
    number_shared(devices);
    return devices;
}

const row_figures all_figures{.sightings = 1001,
                              .sighted_devices = 1,
                              .differing = 1003,
                              .differing_seen = 1004,
                              .left_out = 1,
                              .devices = 1006,
                              .named = 1007,
                              .added_by_logs = 1008,
                              .changed_by_logs = 1009,
                              .deleted_by_logs = 1010};

const findings_form on_paper{.most_rows = 2,
                             .has_pages = false,
                             .most_columns = 44,
                             .most_sources = 1,
                             .is_brief = true};

/** All sections of findings, in one of their forms. */
QByteArray findings(const report_case &the_case, const row_figures &figures_of_rows, const findings_form &form)
{
    const QList<joined_device> devices = devices_in(the_case);
    const QList<device_facts> facts = facts_of(devices);
    return figures(the_case, facts, figures_of_rows, form) + shared_devices_section(the_case, facts, form)
           + paired_section(the_case, facts, form) + named_section(the_case, facts, form, 1007)
           + flagged_section(the_case, facts, form);
}

QByteArray findings_of_page()
{
    return findings(whole_case(), all_figures, {});
}

QByteArray findings_of_pages()
{
    findings_form form;
    form.most_rows = 2;
    form.pages = {u"one.html"_s, u"two.html"_s, u"three.html"_s};
    return findings(whole_case(), all_figures, form);
}

QByteArray findings_on_paper()
{
    return findings(whole_case(), all_figures, on_paper);
}

QByteArray no_findings()
{
    const report_case the_case = bare_case();
    return figures(the_case, {}, {}, {}) + shared_devices_section(the_case, {}, {}) + paired_section(the_case, {}, {})
           + named_section(the_case, {}, {}, 0) + flagged_section(the_case, {}, {});
}

QByteArray cards()
{
    const report_case the_case = whole_case();
    const QList<joined_device> devices = devices_in(the_case);
    return device_cards(the_case, facts_of(devices), true).section();
}

QByteArray evidence()
{
    return evidence_section(whole_case()) + brief_sources_table(whole_case(), 2);
}

QByteArray provenance()
{
    report_case older = whole_case();
    QJsonObject tool = older.heading.value("tool"_L1).toObject();
    tool.remove("libraries"_L1);
    tool.insert("qt"_L1, u"6.2"_s);
    tool.insert("sqlite"_L1, u"3.37"_s);
    tool.insert("plugin"_L1, QJsonObject{{u"path"_s, u"/lib/plugin.so"_s}});
    older.heading.insert("tool"_L1, tool);
    return provenance_section(whole_case()) + provenance_section(older) + provenance_section(bare_case());
}

/** What is the same in every page, the style and the hashes in the policy, is cut out. */
QByteArray start_of(const report_case &the_case, bool has_script)
{
    static const QRegularExpression style(u"<style>.*(?=@page\\{@top-left)|(?<=sha256-)[^']*"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
    QString html = QString::fromUtf8(document_start(the_case, "A title", has_script));
    return html.remove(style).toUtf8();
}

QByteArray head()
{
    report_case changed = whole_case();
    report_case unchanged = whole_case();
    for (report_source &source : unchanged.sources)
        source.record.evidence = {};
    const QStringList shortcomings{u"source 4: failed <x>"_s, u"a text of more columns than there is room for"_s,
                                   u"a third"_s};
    report_case one = unchanged;
    one.sources.resize(1);
    report_case long_words = bare_case();
    long_words.heading = {{u"case_number"_s, QString(u'c').repeated(61)}, {u"examiner"_s, u"Aé "_s.repeated(21)}};
    return start_of(changed, true) + start_of(bare_case(), false) + start_of(long_words, false)
           + case_heading(changed, "A title", shortcomings) + case_heading(changed, "A title", {})
           + case_heading(unchanged, "A title", shortcomings, {2, 20}) + case_heading(unchanged, "A title", {})
           + case_heading(one, "A title", {}) + case_heading(bare_case(), "A title", {}) + page_tools()
           + navigation({{"a", "A"}, {"b", "B"}});
}

QByteArray log_times()
{
    const report_case the_case = whole_case();
    const QList<joined_device> devices = devices_in(the_case);
    const auto add = [&the_case](log_timeline &times, int source, const char *date, const cell &rssi) {
        times.add(the_case.sources.at(source), cell::of_text_if_any(date), rssi);
    };
    log_timeline times;
    add(times, 0, "May 17 12:11:05", cell::of_integer(-60));
    add(times, 0, "May 17 12:13:05", cell::of_integer(-20));
    add(times, 0, "May 18 12:13:06", cell());
    add(times, 0, "May 17 12:11:00", cell::of_integer(-101));
    add(times, 0, nullptr, cell::of_integer(-10));
    add(times, 0, "yesterday", cell());
    add(times, 1, "Dec 31 23:59:59", cell());
    add(times, 1, "Jan  1 00:00:00", cell());
    add(times, 2, "Jan  1 00:00:00", cell());
    const std::vector<qint64> numbers{1, 1, 1, 3, 3, 3, 99, 4};
    const timeline_form brief{.most_logs = 1,
                              .most_lanes = 1,
                              .has_pages = false,
                              .most_columns = 10,
                              .words = {", notices", "Notices", "notice", "notices"}};
    const QList<device_facts> facts = facts_of(devices);
    return times.html(facts, numbers, {}) + times.html(facts, numbers, brief);
}

QByteArray parts()
{
    QByteArray html;
    for (const qint64 number : {qint64(0), qint64(999), qint64(1000), qint64(-999), qint64(-1234567)})
        html += grouped_digits(number) + ' ' + counted(number, "one", "many") + '\n';
    return html + counted(1, "one", "many") + '\n' + html_fact("Name", "value") + html_fact("Name", {})
           + html_link("id", "text") + html_hash(u"ab"_s) + html_hash({}) + '\n'
           + html_static_table("Caption", {"A", "B"}, html_row({"a", "b"}))
           + html_titled_table("Caption", {"A", "B"}, html_row({"a", "b"})) + html_figure("Label", "<svg>", "Caption")
           + html_section("id", "Title", "content");
}

QByteArray line_of(const column_about &about)
{
    return about.name + " | " + about.heading + " | " + about.group + " | " + (about.is_hidden ? "hidden" : "shown")
           + " | " + about.twin + about.link + '\n';
}

/** Where each column of each list stands, and what the page says of it but for its meaning, which terms.html has. */
QByteArray columns()
{
    constexpr const char *places[] = {"", "cells: ", "members: ", "members of databases: ", "members of logs: "};
    QByteArray lines;
    const auto add = [&](const char *list, const QList<report_column> &columns) {
        lines += QByteArray(list) + "\n\n";
        for (const report_column &column : columns) {
            const QByteArray place = places[size_t(column.use)];
            lines += place + (column.is_json ? "JSON " : "") + line_of(about_column(column));
        }
        lines += '\n';
    };
    add("rows", row_cells(result_columns()).columns());
    add("devices in lists", columns_of(host_device_columns()));
    add("shared devices", columns_of(shared_columns()));
    add("write-ahead logs", columns_of(wal_columns()));
    add("lines without a row", columns_of(unparsed_columns()));
    add("salvaged rows", columns_of(salvage_columns()));
    add("events", columns_of(timeline_columns()));
    add("evidence files", columns_of(evidence_columns()));
    add("containers", columns_of(container_columns()));
    add("sources", columns_of(source_list_columns()));
    lines += "the page's own\n\n";
    for (const char *name : {"device", "rows", "shared_device", "host_name", "uuid", "not_joined_because", "unknown"})
        lines += line_of(about_own_column(name));
    return lines;
}

/** With all that may be said, with nothing, and with what stands in its place. */
QByteArray readmes()
{
    report_case whole = whole_case();
    whole.shortcomings = {u"source 4: failed"_s, u"a second one"_s};
    report_options options;
    options.formats = {report_format::csv, report_format::jsonl};
    changed_cells changes;
    for (int row = 1; row < 4; ++row)
        changes.add({u"devices.csv"_s, row, u"name"_s, row == 2 ? cell_change::hexadecimal : cell_change::apostrophe});
    report_options raw = options;
    raw.formats = {report_format::timeline};
    raw.cells = {true, true};
    report_options without_cells = options;
    without_cells.formats = {report_format::jsonl};
    return readme(whole, options, changes, {u"A note."_s, u"Another."_s}) + "----\n" + readme(bare_case(), raw, {}, {})
           + "----\n" + readme(bare_case(), without_cells, changes, {});
}

} // namespace

using text_function_of_case = QByteArray (*)();
Q_DECLARE_METATYPE(text_function_of_case)

/**
 * Each section of the page, and the readme, as a whole: texts/NAME. They are made of the case that stands above.
 */
class test_report_texts : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
};

void test_report_texts::text_data()
{
    QTest::addColumn<text_function_of_case>("make");

    // clang-format off
    QTest::newRow("cards.html")              << text_function_of_case(cards);
    QTest::newRow("columns.txt")             << text_function_of_case(columns);
    QTest::newRow("evidence.html")           << text_function_of_case(evidence);
    QTest::newRow("findings.html")           << text_function_of_case(findings_of_page);
    QTest::newRow("findings_of_pages.html")  << text_function_of_case(findings_of_pages);
    QTest::newRow("findings_on_paper.html")  << text_function_of_case(findings_on_paper);
    QTest::newRow("head.html")               << text_function_of_case(head);
    QTest::newRow("no_findings.html")        << text_function_of_case(no_findings);
    QTest::newRow("parts.html")              << text_function_of_case(parts);
    QTest::newRow("provenance.html")         << text_function_of_case(provenance);
    QTest::newRow("readme.txt")              << text_function_of_case(readmes);
    QTest::newRow("terms.html")              << text_function_of_case(terms_section);
    QTest::newRow("timeline.html")           << text_function_of_case(log_times);
    // clang-format on
}

void test_report_texts::text()
{
    QFETCH(const text_function_of_case, make);
    compare_with_text(QString::fromLatin1(QTest::currentDataTag()), make());
}

BLUETOOTH_LOGS_TEST(test_report_texts, QCoreApplication)

#include "test_report_texts.moc"
