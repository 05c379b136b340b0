// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_page.h"

#include "host/case/result_tables.h"
#include "host/files/new_file.h"
#include "host/report/page/column_words.h"
#include "host/report/page/device_cards.h"
#include "host/report/page/evidence_section.h"
#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"
#include "host/report/page/page_head.h"
#include "host/report/page/page_parts.h"
#include "host/report/page/provenance.h"

using namespace Qt::StringLiterals;

namespace {

constexpr const char *title = "Bluetooth evidence";

/** A part of the page, in its order: a section of its own words, or a table of rows. Both may be nothing. */
struct page_section
{
    section_link link;
    QByteArray html = {};
    const html_table *table = nullptr;
};

void add_data(new_file &file, const QList<page_section> &sections)
{
    file.add("<script type=\"application/json\" id=\"data\">{\"tables\":[");
    bool is_first = true;
    for (const page_section &section : sections) {
        if (!section.table)
            continue;
        file.add(is_first ? "\n" : ",\n");
        section.table->add_data(file);
        is_first = false;
    }
    file.add("\n]}</script>\n<script>");
    file.add(page_script);
    file.add("</script>\n");
}

void write_page(const QString &path, const report_case &the_case, const QStringList &shortcomings,
                const QList<page_section> &sections)
{
    QList<section_link> links;
    for (const page_section &section : sections) {
        if (!section.link.title.isEmpty() && (section.table || !section.html.isEmpty()))
            links.append(section.link);
    }
    new_file file(path);
    file.add(document_start(the_case, title, true));
    file.add("<a class=\"skip\" href=\"#content\">To the content</a>\n<header>");
    file.add(case_heading(the_case, title, shortcomings));
    file.add("</header>\n");
    file.add(page_tools());
    file.add(navigation(links));
    file.add("<main id=\"content\">\n");
    for (const page_section &section : sections)
        file.add(section.table ? section.table->section() : section.html);
    file.add("<div id=\"meaning\" role=\"tooltip\" hidden></div>\n</main>\n"
             "<dialog id=\"row\" aria-labelledby=\"row-heading\"><h2 id=\"row-heading\">Row</h2><dl></dl>"
             "<p><button type=\"button\" class=\"copy\">Copy this row</button> <button type=\"button\" "
             "class=\"close\">Close</button> <span role=\"status\"></span></p></dialog>\n");
    add_data(file, sections);
    file.add("</body>\n</html>\n");
    file.commit();
}

/** What is always there, behind the rows. */
QList<page_section> last_sections(const report_case &the_case)
{
    return {
        {{"evidence", "Evidence"}, evidence_section(the_case)},
        {{"provenance", "Provenance"}, provenance_section(the_case)},
        {{"terms", "Terms"}, terms_section()},
        {{"limitations", "Limitations"},
         html_section("limitations", "Known limitations", QByteArray(page_prose_limitations))},
    };
}

QByteArray pages_section(const report_case &the_case, const QStringList &pages)
{
    QByteArray links;
    for (qsizetype i = 0; i < pages.size(); ++i)
        links += "<li><a href=\"" + html_text(pages.at(i)) + "\">Source "
                 + QByteArray::number(the_case.sources.at(i).record.number) + ": <bdi>"
                 + html_text(the_case.sources.at(i).name) + "</bdi></a></li>";
    return html_section("pages", "Rows of the sources",
                        "<p>Each source has a page of its own.</p><ul>" + links + "</ul>\n");
}

QByteArray findings_section(const QByteArray &content)
{
    return html_section("findings", "Findings", content + page_prose_signs);
}

/** Printed instead of the windows; script/print.js fills it. */
constexpr const char *printed_devices = "<div id=\"printed-devices\"></div>\n";

} // namespace

html_page::html_page(const report_case &the_case)
    : facts_of_case(the_case)
{
    for (const QString &table : result_tables()) {
        const column_names columns = result_columns(the_case, table);
        problems_of_lists += columns.problems;
        tables.insert(table, std::make_shared<row_table>(the_case, table, columns.names));
    }
}

void html_page::add(const report_row &row)
{
    (*tables.find(row.table))->add(row);
}

void html_page::count(const report_row &row)
{
    (*tables.find(row.table))->count(row);
}

/** Of the content, and of what was read for the page after it was gathered. */
QStringList html_page::shortcomings(const page_content &content) const
{
    QStringList texts = content.shortcomings;
    for (const QString &problem : problems_of_lists) {
        if (!texts.contains(problem))
            texts.append(problem);
    }
    return texts;
}

/** Once, whichever page is written first: the lists are read for it. */
void html_page::count_rows(const page_content &content)
{
    if (counts)
        return;
    counts = row_figures{};
    for (const QString &name : result_tables()) {
        const row_table &rows = **tables.find(name);
        counts->differing += rows.differing;
        counts->left_out += rows.left_out;
    }
    const row_table &seen = **tables.find(result_tables().first());
    counts->differing_seen = seen.differing;
    counts->sightings = seen.sightings;
    counts->sighted_devices = seen.sighted.size();
    counts->devices = content.device_count;
    counts->named = content.named_count;
    const row_devices &numbers = content.device_of_row;
    lists.push_back(wal_table(facts_of_case, numbers.value(wal_changes_list), *counts, problems_of_lists));
    lists.push_back(host_device_table(facts_of_case, numbers.value(host_devices_list), problems_of_lists));
    lists.push_back(unparsed_table(facts_of_case, problems_of_lists));
    lists.push_back(salvage_table(facts_of_case, problems_of_lists));
}

QList<const html_table *> html_page::finished_tables(const page_content &content)
{
    count_rows(content);
    QList<const html_table *> list;
    for (const QString &name : result_tables()) {
        row_table &rows = **tables.find(name);
        rows.finish(content.device_of_row.value(name));
        rows.table.add_to_caption(
            "Rows with a contradiction: " + grouped_digits(rows.differing)
            + "; host_differs names the columns. Rows of which the plug-in leaves something out by "
              "design: "
            + grouped_digits(rows.left_out) + "; host_left_out names it.");
        list.append(&rows.table);
    }
    for (std::size_t i = 0; i < lists.size(); ++i) {
        const bool is_always_there = i < 2; // what was salvaged or not read is there only where there is any
        if (is_always_there || lists[i].row_count() > 0)
            list.append(&lists[i]);
    }
    return list;
}

QByteArray html_page::timeline_section(const page_content &content, const QList<device_facts> &facts,
                                       const timeline_form &form) const
{
    constexpr timeline_words notices{", \"active device\" notices", "Notices", "notice", "notices"};
    QByteArray html;
    for (const QString &name : result_tables()) {
        timeline_form of_table = form;
        if (name != result_tables().first())
            of_table.words = notices;
        html += (*tables.find(name))->times.html(facts, content.device_of_row.value(name), of_table);
    }
    if (html.isEmpty())
        return {};
    return html_section(
        "timeline", "Timeline",
        "<p>Logs alone have times. Their dates have no year and no zone: both stand here as the log wrote "
        "them, on an axis for each log, and a February is given 29 days. Dates that begin anew are taken "
        "for the next year.</p>\n"
            + html);
}

void html_page::write(const QString &path, const page_content &content)
{
    const QList<device_facts> facts = facts_of(content.devices);
    const QList<const html_table *> rows = finished_tables(content);
    const html_table cards = device_cards(facts_of_case, facts, content.is_all_compared);
    const findings_form form;
    QList<page_section> sections{
        {{"findings", "Findings"}, findings_section(figures(facts_of_case, facts, *counts, form))},
        {{"flagged", "Flagged and noted"}, flagged_section(facts_of_case, facts, form)},
        {{"more-than-one-source", "In more than one source"}, shared_devices_section(facts_of_case, facts, form)},
        {{"paired", "Paired or in use"}, paired_section(facts_of_case, facts, form)},
        {{"named", "Named devices"}, named_section(facts_of_case, facts, form, content.named_count)},
        {{"timeline", "Timeline"}, timeline_section(content, facts)},
        {{"cards", "All devices"}, {}, &cards},
        {{}, printed_devices},
    };
    for (const html_table *table : rows)
        sections.append({{table->id(), table->title()}, {}, table});
    write_page(path, facts_of_case, shortcomings(content), sections + last_sections(facts_of_case));
}

void html_page::write_brief(const QString &path, const page_content &content, const QString &report_sha256)
{
    const QList<device_facts> facts = facts_of(content.devices);
    count_rows(content);
    const findings_form form{.most_rows = 50,
                             .has_pages = false,
                             .most_columns = 44,
                             .most_sources = 6,
                             .is_brief = true};
    const timeline_form times{.most_logs = 2, .most_lanes = 6, .has_pages = false, .most_columns = 44};
    const QByteArray annex = report_sha256.isEmpty() ? QByteArray("<p>No full report was written with it.</p>\n")
                                                     : "<p>Its annex is the full report, report.html, SHA-256 "
                                                           + html_hash(report_sha256) + ".</p>\n";
    constexpr qsizetype most_sources = 30;
    new_file file(path);
    file.add(document_start(facts_of_case, "Bluetooth evidence in brief", false));
    file.add("<header class=\"brief\">");
    file.add(case_heading(facts_of_case, "Bluetooth evidence in brief", shortcomings(content), {20, 300}));
    file.add("</header>\n<main id=\"content\" class=\"brief\">\n");
    file.add(html_section("findings", "Findings", annex + figures(facts_of_case, facts, *counts, form)));
    file.add(flagged_section(facts_of_case, facts, form));
    file.add(shared_devices_section(facts_of_case, facts, form));
    file.add(paired_section(facts_of_case, facts, form));
    file.add(timeline_section(content, facts, times));
    file.add(html_section("evidence", "Integrity",
                          brief_sources_table(facts_of_case, most_sources) + manifest_facts(facts_of_case)));
    file.add(html_section("terms", "Glossary", page_prose_glossary));
    file.add(html_section("limitations", "Known limitations", page_prose_limitations));
    file.add(html_section("signatures", "Signatures", page_prose_signatures));
    file.add("</main>\n</body>\n</html>\n");
    file.commit();
}

void html_page::write_index(const QString &path, const page_content &content, const QStringList &pages)
{
    const QList<device_facts> facts = facts_of(content.devices);
    count_rows(content);
    findings_form form;
    form.pages = pages;
    timeline_form times;
    times.has_pages = false;
    const QList<page_section> sections{
        {{"findings", "Findings"}, findings_section(figures(facts_of_case, facts, *counts, form))},
        {{"flagged", "Flagged and noted"}, flagged_section(facts_of_case, facts, form)},
        {{"more-than-one-source", "In more than one source"}, shared_devices_section(facts_of_case, facts, form)},
        {{"paired", "Paired or in use"}, paired_section(facts_of_case, facts, form)},
        {{"named", "Named devices"}, named_section(facts_of_case, facts, form, content.named_count)},
        {{"timeline", "Timeline"}, timeline_section(content, facts, times)},
        {{"pages", "Rows of the sources"}, pages_section(facts_of_case, pages)},
    };
    write_page(path, facts_of_case, shortcomings(content), sections + last_sections(facts_of_case));
}

void html_page::write_source(const QString &path, const page_content &content, const QString &index)
{
    const QList<device_facts> facts = facts_of(content.devices);
    const QList<const html_table *> rows = finished_tables(content);
    const html_table cards = device_cards(facts_of_case, facts, content.is_all_compared);
    QList<page_section> sections{
        {{"pages", "The whole case"},
         html_section("pages", "The whole case",
                      "<p><a href=\"" + html_text(index)
                          + "\">To the whole case</a>: what appears in more than one source stands there.</p>\n")},
        {{"timeline", "Timeline"}, timeline_section(content, facts)},
        {{"cards", "All devices"}, {}, &cards},
    };
    for (const html_table *table : rows)
        sections.append({{table->id(), table->title()}, {}, table});
    write_page(path, facts_of_case, shortcomings(content), sections + last_sections(facts_of_case));
}
