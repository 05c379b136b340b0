// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_summary.h"

#include "host/report/page/html_text.h"

#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_cards = 500;       // all are in shared.csv and shared.jsonl
constexpr qsizetype most_appearances = 100; // of one card
constexpr qsizetype most_points = 500;

QByteArray row_of(const QByteArrayList &cells)
{
    return "<tr><td>" + cells.join("</td><td>") + "</td></tr>\n";
}

QByteArray table_of(QByteArrayView caption, const QByteArrayList &headings, const QByteArray &rows)
{
    return "<div class=\"scroller\" tabindex=\"0\" role=\"region\" aria-label=\"" + caption.toByteArray()
           + "\"><table><caption>" + caption.toByteArray() + "</caption><thead><tr><th scope=\"col\">"
           + headings.join("</th><th scope=\"col\">") + "</th></tr></thead>\n<tbody>\n" + rows
           + "</tbody></table></div>\n";
}

QByteArray fact(QByteArrayView name, const QByteArray &value)
{
    return value.isEmpty() ? QByteArray() : "<dt>" + name.toByteArray() + "</dt><dd>" + value + "</dd>\n";
}

QByteArray hash_text(const QString &hash)
{
    return hash.isEmpty() ? QByteArray("none") : "<span class=\"hash\">" + html_text(hash) + "</span>";
}

QByteArray number_text(const std::optional<qint64> &number)
{
    return number ? QByteArray::number(*number) : QByteArray("unknown");
}

QByteArray case_facts(const report_case &that_case)
{
    const QJsonObject tool = that_case.heading.value("tool"_L1).toObject();
    const auto text = [&that_case](QLatin1StringView member) {
        return html_text(that_case.heading.value(member).toString());
    };
    return "<section id=\"summary\" aria-labelledby=\"summary-heading\"><h2 id=\"summary-heading\">Summary</h2>\n<dl>\n"
           + fact("Case number", text("case_number"_L1)) + fact("Examiner", text("examiner"_L1))
           + fact("Started", text("started"_L1)) + fact("Finished", text("finished"_L1))
           + fact("Program", html_text(tool.value("version"_L1).toString()))
           + fact("Vendors by", html_text(that_case.vendors.description()))
           + fact("SHA-256 of manifest.json", hash_text(that_case.manifest_sha256)) + "</dl>\n";
}

QByteArray sources_table(const report_case &that_case)
{
    QByteArray rows;
    for (const report_source &source : that_case.sources) {
        QByteArrayList counts;
        for (const table_rows &table : source.record.rows)
            counts.append(html_text(table.table) + ": " + number_text(table.stored)
                          + (table.found ? " of " + number_text(table.found) : QByteArray()));
        QByteArrayList messages;
        for (const run_message &message : source.record.messages)
            messages.append("<li>" + html_text(message.text) + "</li>");
        rows += row_of({QByteArray::number(source.record.number), "<bdi>" + html_text(source.name) + "</bdi>",
                        html_text(source.record.type), html_text(status_name(source.record.status)),
                        counts.join("<br>"), hash_text(source.record.result_sha256),
                        messages.isEmpty() ? QByteArray() : "<ul>" + messages.join() + "</ul>"});
    }
    return table_of("Sources",
                    {"Number", "Name", "Type", "Status", "Rows stored, of those found", "SHA-256 of the result",
                     "Messages"},
                    rows);
}

QByteArray evidence_table(const report_case &that_case)
{
    QByteArray rows;
    for (const report_source &source : that_case.sources) {
        for (const evidence_file &file : source.record.evidence.files) {
            QByteArray reason = html_text(file.reason);
            if (file.path.endsWith(".corrupt"_L1) && reason.isEmpty())
                reason = "a leftover of a damaged database; its content is not parsed";
            rows += row_of({QByteArray::number(source.record.number), "<bdi>" + html_text(file.path) + "</bdi>",
                            html_text(presence_name(file.state)), reason,
                            file.before ? QByteArray::number(file.before->size) : QByteArray(),
                            file.before ? hash_text(file.before->sha256) : QByteArray(),
                            file.after ? hash_text(file.after->sha256) : QByteArray()});
        }
    }
    return table_of("Files of the evidence",
                    {"Source", "Path in the source", "State", "Reason", "Bytes", "SHA-256 before", "SHA-256 after"},
                    rows);
}

QByteArray place_text(const row_place &place)
{
    if (place.file.isEmpty())
        return "place in the evidence unknown";
    QByteArray text = html_evidence(place.file);
    if (place.line)
        return text + ", line " + QByteArray::number(*place.line) + ", byte offset " + number_text(place.offset);
    return text + ", table " + html_evidence(place.table) + ", rowid " + number_text(place.rowid);
}

QByteArray if_any(QByteArrayView before, const QByteArray &evidence)
{
    return evidence.isEmpty() ? QByteArray() : before.toByteArray() + html_evidence(evidence);
}

QByteArray shared_card(const report_case &that_case, const joined_device &device)
{
    QByteArray keys;
    for (const join_key &key : device.keys)
        keys += QByteArray("<li>")
                + (key.what == join_key::kind::public_address ? "public address " : "iCloud identifier ")
                + html_evidence(key.value) + "</li>";
    const qsizetype most_shown = std::min(device.appearances.size(), most_appearances);
    QByteArray rows;
    for (const device_appearance &appearance : device.appearances.first(most_shown)) {
        const report_source &source = that_case.sources.at(appearance.source);
        rows += "<li>source " + QByteArray::number(source.record.number) + " (<bdi>" + html_text(source.name)
                + "</bdi>), " + html_text(appearance.table) + ": "
                + (appearance.name.isEmpty() ? QByteArray("no name") : html_evidence(appearance.name)) + ", "
                + (appearance.address.isEmpty() ? QByteArray("no address") : html_evidence(appearance.address))
                + if_any(", resolved address ", appearance.resolved_address)
                + if_any(", iCloud identifier ", appearance.icloud_identifier)
                + if_any(", name in the Bluetooth preferences ", appearance.preferences_name) + ", UUID "
                + (appearance.uuid.isEmpty() ? QByteArray("none") : html_evidence(appearance.uuid)) + ", "
                + place_text(appearance.place) + "</li>";
    }
    if (device.appearances.size() > most_shown)
        rows += "<li>and " + QByteArray::number(device.appearances.size() - most_shown)
                + " more, which are in shared.csv and shared.jsonl</li>";
    return "<article class=\"card\"><h3>Shared device " + QByteArray::number(device.shared_number)
           + "</h3><p>Joined by</p><ul>" + keys + "</ul><p>Appears as</p><ul>" + rows + "</ul></article>\n";
}

} // namespace

QByteArray shared_section(const report_case &that_case, const QList<joined_device> &devices)
{
    QByteArray cards;
    qsizetype count = 0;
    for (const joined_device &device : devices) {
        if (device.shared_number > 0 && ++count <= most_cards)
            cards += shared_card(that_case, device);
    }
    QByteArray html =
        "<section id=\"more-than-one-source\" aria-labelledby=\"more-heading\"><h2 id=\"more-heading\">In "
        "more than one source</h2>\n<p>Devices that more than one source knows: "
        + QByteArray::number(count) + ". Such a device links those whose sources these are.</p>\n";
    if (count > most_cards)
        html += "<p>The first " + QByteArray::number(most_cards)
                + " are shown; all are in shared.csv and shared.jsonl, "
                  "which -f csv and -f jsonl write.</p>\n";
    html += "<p class=\"quiet\">Rows of different sources count as one device when they have the same public address, "
            "their own or a resolved one, or the same iCloud identifier, letter case and separators aside. An address "
            "without a word for its kind counts as public. Nothing else joins sources: empty values and the address of "
            "zeros say nothing; a random address changes and may be another device's elsewhere; a UUID is the name "
            "that one system has given to a device, and means nothing in another.</p>\n";
    return html + "<div class=\"cards\">\n" + cards + "</div></section>\n";
}

QByteArray summary_sections(const report_case &that_case, const QStringList &shortcomings,
                            const QList<section_link> &sections)
{
    QByteArray html = "<a class=\"skip\" href=\"#content\">To the content</a>\n<header><h1>Bluetooth devices of a "
                      "case</h1>\n";
    if (!shortcomings.isEmpty()) {
        html += "<div class=\"alarm\"><p><strong>This case is not complete.</strong></p><ul>";
        for (const QString &text : shortcomings)
            html += "<li>" + html_text(text) + "</li>";
        html += "</ul></div>\n";
    }
    html += "<noscript><p class=\"alarm\">Without script the tables show their first 200 rows, and neither sort nor "
            "filter.</p></noscript>\n<nav aria-label=\"Sections\"><ul><li><a href=\"#summary\">Summary</a></li>";
    for (const section_link &section : sections)
        html += "<li><a href=\"#" + html_text(section.id) + "\">" + html_text(section.title) + "</a></li>";
    html += "<li><a href=\"#limitations\">Limitations</a></li></ul></nav></header>\n"
            "<main id=\"content\">\n";
    html += case_facts(that_case) + sources_table(that_case) + evidence_table(that_case);
    html +=
        "<p class=\"quiet with-script\" hidden>The tables below hold only the rows in view: search them with their own "
        "filters, not with the browser's search. A number in front of a row opens all of its values.</p>\n"
        "<p class=\"quiet\">\u2205 is NULL; \\u{1b} stands for a character that is unseen or would act on its reader, "
        "\\\\ for a backslash.</p></section>\n";
    return html;
}

QByteArray pages_section(const report_case &that_case, const QStringList &pages)
{
    QByteArray links;
    for (qsizetype i = 0; i < pages.size(); ++i)
        links += "<li><a href=\"" + html_text(pages.at(i)) + "\">Source "
                 + QByteArray::number(that_case.sources.at(i).record.number) + ": <bdi>"
                 + html_text(that_case.sources.at(i).name) + "</bdi></a></li>";
    return "<section id=\"pages\" aria-labelledby=\"pages-heading\"><h2 id=\"pages-heading\">Rows of the "
           "sources</h2>\n<p>Each source has a page of its own.</p><ul>"
           + links + "</ul></section>\n";
}

QByteArray way_back_section(const QString &index)
{
    return "<p><a href=\"" + html_text(index)
           + "\">To the whole case</a>: what appears in more than one source stands "
             "there.</p>\n";
}

QByteArray rank_picture(const report_source &source, const QString &table, const QList<std::optional<qint64>> &seen,
                        const QList<std::optional<qint64>> &connected)
{
    QList<std::pair<qint64, qint64>> points;
    qint64 largest = 1;
    for (qsizetype i = 0; i < seen.size(); ++i) {
        if (!seen.at(i) || !connected.at(i))
            continue;
        points.append({*seen.at(i), *connected.at(i)});
        largest = std::max({largest, *seen.at(i), *connected.at(i)});
    }
    if (points.isEmpty())
        return {};
    std::sort(points.begin(), points.end());
    const qsizetype count = std::min(points.size(), most_points);
    const auto place = [largest](qint64 rank) { return QByteArray::number(60 + (rank - 1) * 320 / largest); };

    const QByteArray title = "Source " + QByteArray::number(source.record.number) + ", " + html_text(table);
    QByteArray circles;
    QByteArray rows;
    for (qsizetype i = 0; i < count; ++i) {
        const auto [seen_rank, connected_rank] = points.at(i);
        circles += "<circle class=\"point\" cx=\"" + place(seen_rank) + "\" cy=\"" + place(connected_rank)
                   + "\" r=\"3\"/>";
        rows += "<tr><td class=\"number\">" + QByteArray::number(seen_rank) + "</td><td class=\"number\">"
                + QByteArray::number(connected_rank) + "</td></tr>\n";
    }
    QByteArray html = "<h3>" + title + "</h3>\n";
    if (points.size() > count)
        html += "<p>The first " + QByteArray::number(count) + " of " + QByteArray::number(points.size())
                + " rows by rank of last seen.</p>\n";
    html +=
        "<svg viewBox=\"0 0 400 400\" width=\"400\" height=\"400\" role=\"img\" aria-label=\"" + title
        + ": rank of last seen against rank of last connected; the table below holds the same\"><line class=\"axis\" "
          "x1=\"50\" y1=\"50\" x2=\"390\" y2=\"50\"/><line class=\"axis\" x1=\"50\" y1=\"50\" x2=\"50\" y2=\"390\"/>"
          "<text x=\"60\" y=\"24\">last seen: rank 1 to "
        + QByteArray::number(largest) + " \u2192</text><text x=\"60\" y=\"42\">down: last connected \u2193</text>"
        + circles + "</svg>\n";
    return html + "<details><summary>The same as a table</summary>"
           + table_of(title, {"Rank of last seen", "Rank of last connected"}, rows) + "</details>\n";
}

QByteArray picture_section(const QByteArray &pictures)
{
    return "<section id=\"ranks\" aria-labelledby=\"ranks-heading\"><h2 id=\"ranks-heading\">Last seen against last "
           "connected</h2>\n<p>The times in the evidence are counters, no dates. A rank orders the rows of one table "
           "of "
           "one source: 1 is the largest counter, equal ones share their rank, 0 means never and has none.</p>\n"
           + (pictures.isEmpty() ? QByteArray("<p>No row has both.</p>\n") : pictures) + "</section>\n";
}

QByteArray limitations_section()
{
    return "<section id=\"limitations\" aria-labelledby=\"limitations-heading\"><h2 id=\"limitations-heading\">Known "
           "limitations</h2>\n<ul>"
           "<li>The plug-in reads the main file of a database alone. What a write-ahead log (-wal) adds, changes or "
           "deletes stands in a table of its own above, as the host's reading.</li>"
           "<li>The table of devices seen is a cache of about 1,000 rows: a device that is not there may have been "
           "near.</li>"
           "<li>Last seen and last connected are counters of unknown origin, no dates. Where a number could be a time, "
           "the report says that it is plausible as one, and no more.</li>"
           "<li>The plug-in leaves out the times of paired devices that the evidence holds as integers; "
           "host_last_seen_time and host_last_connection_time have them.</li>"
           "<li>The kind of a random address is that of its two highest bits: 11 static, 01 resolvable, 00 "
           "non-resolvable, 10 reserved (Bluetooth Core Specification, volume 6, part B, section 1.3.2).</li>"
           "<li>host_differs names the columns of a row in which the evidence, read by the host, says something else "
           "than the result.</li>"
           "<li>Leftovers of damaged databases (.corrupt) are named with size and hash; their content is not "
           "parsed.</li>"
           "<li>host_preferences_name is the name that the Bluetooth preferences keep for the row's public address, "
           "its "
           "own or the resolved one.</li>"
           "<li>This report reads the case and does not check it: the hashes are those of the manifest, and "
           "\"bluetooth-logs verify\" compares them.</li></ul></section>\n";
}
