// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/findings.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"
#include "host/report/page/page_parts.h"
#include "host/report/page/source_matrix.h"

#include <algorithm>

namespace {

constexpr const char *flag_sign = "<span class=\"flag\">flagged</span>";

using device_list_part = QList<const device_facts *>;

template<typename Condition>
device_list_part those(const QList<device_facts> &devices, const Condition &is_wanted)
{
    device_list_part part;
    for (const device_facts &facts : devices) {
        if (is_wanted(facts))
            part.append(&facts);
    }
    return part;
}

/** The strongest links first, then devices with a name. */
device_list_part shared_of(const QList<device_facts> &devices)
{
    device_list_part part = those(devices, [](const device_facts &facts) { return facts.is_shared(); });
    const auto weight = [](const device_facts *facts) {
        return std::min<qsizetype>(facts->paired_in.size(), 2) * 2 + (facts->is_named ? 1 : 0);
    };
    std::stable_sort(part.begin(), part.end(),
                     [&weight](const device_facts *one, const device_facts *two) { return weight(one) > weight(two); });
    return part;
}

device_list_part paired_of(const QList<device_facts> &devices)
{
    return those(devices, [](const device_facts &facts) { return facts.is_paired(); });
}

device_list_part named_of(const QList<device_facts> &devices)
{
    return those(devices, [](const device_facts &facts) { return facts.is_named; });
}

device_list_part flagged_of(const QList<device_facts> &devices)
{
    return those(devices, [](const device_facts &facts) { return !facts.notes.isEmpty(); });
}

QByteArray figure(const QByteArray &id, qint64 number, const char *words)
{
    return "<li><a href=\"#" + id + "\"><strong>" + grouped_digits(number) + "</strong> " + words + "</a></li>\n";
}

QByteArray number_of(const device_facts &facts, const findings_form &form)
{
    QByteArray number = QByteArray::number(facts.number);
    if (!form.has_pages)
        return number;
    const QString page = form.pages.value(facts.device->sources.value(0));
    return "<a href=\"" + html_text(page) + "#device-" + number + "\">" + number + "</a>";
}

/** As much of a text of the evidence as there is room for; nothing for an empty one. */
QByteArray evidence(const QByteArray &text, const findings_form &form)
{
    return text.isEmpty() ? QByteArray() : html_evidence(text, form.most_columns);
}

QByteArray name_cell(const device_facts &facts, const findings_form &form)
{
    return html_name(name_of(*facts.device), form.most_columns);
}

QByteArray and_others(const QByteArray &html, qsizetype count)
{
    return count > 0 ? html + " and " + grouped_digits(count) + " more" : html;
}

/** Of a short report the first, and how many more. */
QByteArray in_a_cell(const QByteArrayList &parts, const findings_form &form)
{
    const qsizetype shown = form.is_brief ? std::min<qsizetype>(parts.size(), 1) : parts.size();
    return and_others(parts.first(shown).join(" | "), parts.size() - shown);
}

/** Each in one line. */
QByteArray addresses(const QByteArrayList &texts, const findings_form &form)
{
    QByteArrayList parts;
    for (const QByteArray &text : texts)
        parts.append(html_whole(evidence(text, form)));
    return in_a_cell(parts, form);
}

QByteArray address_cell(const device_facts &facts, const findings_form &form)
{
    const QByteArrayList resolved = list_of(*facts.device, &device_appearance::resolved_address);
    return "<span class=\"address\">" + addresses(list_of(*facts.device, &device_appearance::address), form)
           + (resolved.isEmpty() ? QByteArray()
                                 : "<br><span class=\"quiet\">resolved</span> " + addresses(resolved, form))
           + "</span>";
}

QByteArray known_as_cell(const device_facts &facts)
{
    return html_whole(known_as(facts).replace(", ", "</span>, <span class=\"whole\">"));
}

/** Numbers of sources, or the first of them and how many more. */
QByteArray sources_cell(const report_case &the_case, const QList<int> &places, const findings_form &form)
{
    const qsizetype left = places.size() - form.most_sources;
    return left <= 1 ? source_numbers(the_case, places)
                     : and_others(source_numbers(the_case, places.first(form.most_sources)), left);
}

QByteArray keys_cell(const joined_device &device, const findings_form &form)
{
    QByteArrayList parts;
    for (const join_key &key : device.keys)
        parts.append(key_kind_text(key) + ' ' + html_whole(evidence(key.value, form)));
    return in_a_cell(parts, form);
}

QByteArray and_more(qint64 count, const findings_form &form)
{
    if (count <= form.most_rows)
        return {};
    return "<p>And " + grouped_digits(count - form.most_rows) + " more"
           + (form.has_pages && form.pages.isEmpty() ? ": " + html_link("cards", "all devices") + ".</p>\n"
                                                     : QByteArray(".</p>\n"));
}

template<typename Row>
QByteArray rows_of(const device_list_part &part, const findings_form &form, const Row &cells_of)
{
    QByteArray rows;
    for (const device_facts *facts : part.first(std::min(part.size(), form.most_rows)))
        rows += html_row(cells_of(*facts));
    return rows;
}

QByteArray device_section(const QByteArray &id, const QByteArray &title, const report_case &the_case,
                          const device_list_part &part, qint64 count, const findings_form &form)
{
    if (part.isEmpty())
        return html_section(id, title, "<p>None.</p>\n");
    const QByteArray rows = rows_of(part, form, [&](const device_facts &facts) -> QByteArrayList {
        return {number_of(facts, form),
                name_cell(facts, form),
                address_cell(facts, form),
                html_whole(evidence(texts_of(*facts.device, &device_appearance::address_kind), form)),
                known_as_cell(facts),
                sources_cell(the_case, facts.device->sources, form)};
    });
    return html_section(id, title + ": " + grouped_digits(count),
                        html_titled_table(title, {"Device", "Name", "Address", "Kind", "Known as", "Sources"}, rows)
                            + and_more(count, form));
}

} // namespace

QByteArray figures(const report_case &the_case, const QList<device_facts> &devices, const row_figures &rows,
                   const findings_form &form)
{
    const bool has_tables = form.has_pages && form.pages.isEmpty();
    const QByteArray rows_section = !has_tables ? "findings" : rows.differing_seen > 0 ? "devices" : "paired-devices";
    const QByteArray logs_section = has_tables ? "wal-changes" : "findings";
    QByteArray html = figure("evidence", the_case.sources.size(), the_case.sources.size() == 1 ? "source" : "sources")
                      + figure(has_tables ? "cards" : "findings", rows.devices,
                               rows.devices == 1 ? "device" : "devices")
                      + figure("more-than-one-source", shared_of(devices).size(), "in more than one source")
                      + figure("paired", paired_of(devices).size(), "paired or in use")
                      + figure(form.has_pages ? "named" : "findings", rows.named, "named");
    const qsizetype flagged = flagged_of(devices).size();
    if (flagged > 0)
        html += figure("flagged", flagged, "flagged or noted by an examiner");
    html += figure(logs_section, rows.added_by_logs, "rows only in a write-ahead log")
            + figure(logs_section, rows.changed_by_logs, "rows that a write-ahead log changes")
            + figure(logs_section, rows.deleted_by_logs, "rows that a write-ahead log deletes")
            + figure(rows_section, rows.differing, "rows with a contradiction: the evidence says something else");
    html = "<ul class=\"figures\">\n" + html + "</ul>\n";
    if (rows.sightings > 0)
        html += "<p>Rows of logs are sightings: " + counted(rows.sightings, "sighting", "sightings") + " of "
                + counted(rows.sighted_devices, "device", "devices")
                + ", told apart by SFDevice ID, else by address. A device whose identifier changes counts more than "
                  "once.</p>\n";
    if (rows.left_out > 0)
        html += "<p>In " + counted(rows.left_out, "row", "rows")
                + " the evidence holds values that are not in the plug-in's row: it leaves them out by design "
                  "(host_left_out names the columns). These are no contradictions and are counted apart.</p>\n";
    return html;
}

QByteArray shared_devices_section(const report_case &the_case, const QList<device_facts> &devices,
                                  const findings_form &form)
{
    const device_list_part shared = shared_of(devices);
    const QByteArray count = "<p>Devices that more than one source knows: " + grouped_digits(shared.size()) + ".</p>\n";
    if (shared.isEmpty())
        return html_section("more-than-one-source", "In more than one source", count + page_prose_joining);
    const QByteArray rows = rows_of(shared, form, [&](const device_facts &facts) -> QByteArrayList {
        return {number_of(facts, form),
                name_cell(facts, form),
                link_strength(the_case, facts),
                sources_cell(the_case, facts.device->sources, form),
                sources_cell(the_case, facts.paired_in, form),
                keys_cell(*facts.device, form)};
    });
    return html_section("more-than-one-source", "In more than one source",
                        count + source_matrix(the_case, shared)
                            + html_titled_table("Devices that more than one source knows",
                                                {"Device", "Name", "Link", "Sources", "Paired or in use in",
                                                 "Joined by"},
                                                rows)
                            + and_more(shared.size(), form) + page_prose_joining);
}

QByteArray paired_section(const report_case &the_case, const QList<device_facts> &devices, const findings_form &form)
{
    const device_list_part paired = paired_of(devices);
    return device_section("paired", "Paired or in use", the_case, paired, paired.size(), form);
}

QByteArray named_section(const report_case &the_case, const QList<device_facts> &devices, const findings_form &form,
                         qint64 count)
{
    return device_section("named", "Named devices", the_case, named_of(devices), count, form);
}

QByteArray flagged_section(const report_case &the_case, const QList<device_facts> &devices, const findings_form &form)
{
    if (the_case.notes->is_empty())
        return {};
    const device_list_part part = flagged_of(devices);
    QByteArray html;
    if (!part.isEmpty()) {
        const QByteArray rows = rows_of(part, form, [&](const device_facts &facts) -> QByteArrayList {
            const note_marks marks(facts.notes);
            return {number_of(facts, form), name_cell(facts, form), address_cell(facts, form),
                    marks.is_flagged ? QByteArray(flag_sign) : QByteArray(), evidence(marks.text, form)};
        });
        html += html_static_table("Flagged or noted devices", {"Device", "Name", "Address", "Flag", "Note"}, rows)
                + and_more(part.size(), form);
    }
    const QList<case_note> &notes = the_case.notes->all();
    QByteArray rows;
    const qsizetype most_notes = form.is_brief ? 20 : form.most_rows;
    for (const case_note &note : notes.first(std::min(notes.size(), most_notes)))
        rows += html_row({QByteArray::number(note.number), html_whole(html_text(note.time)),
                          evidence(note.author.toUtf8(), form),
                          note.row ? "row " + QByteArray::number(note.row->source) + ':' + note.row->table.toUtf8()
                                         + ':' + QByteArray::number(note.row->row)
                                   : evidence(note.device.toUtf8(), form),
                          note.is_flag ? QByteArray(flag_sign) : QByteArray(), evidence(note.text.toUtf8(), form)});
    html += html_static_table("All notes, as examiners made them", {"Number", "Time", "By", "On", "Flag", "Note"},
                              rows);
    if (notes.size() > most_notes)
        html += "<p>And " + grouped_digits(notes.size() - most_notes) + " more notes.</p>\n";
    return html_section("flagged", "Flagged and noted", html);
}
