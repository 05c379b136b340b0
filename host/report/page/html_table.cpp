// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_table.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"

#include <algorithm>

namespace {

QByteArray text_of_page(const QByteArray &own_words)
{
    return html_text(QString::fromUtf8(own_words));
}

QByteArray json_member(const char *name, const QByteArray &value)
{
    return value.isEmpty() ? QByteArray() : ",\"" + QByteArray(name) + "\":" + page_json(value);
}

QByteArray html_cell(const QByteArray &shown, bool is_number)
{
    if (shown.isNull())
        return "<td><span class=\"null\">\u2205</span></td>";
    return (is_number ? "<td class=\"number\">" : "<td>") + html_shown(shown) + "</td>";
}

} // namespace

html_table::html_table(const QByteArray &id, const QByteArray &heading, const QByteArray &caption)
    : section_id(id)
    , heading_text(heading)
    , caption_html(caption)
{
}

page_column &html_table::add_column(const column_about &about)
{
    columns.push_back({about, {}});
    return columns.back().values;
}

qsizetype html_table::row_count() const
{
    return columns.empty() ? 0 : columns.front().values.size();
}

/** Columns in which some row has a value, those of a group together. */
QList<const html_table::table_column *> html_table::filled() const
{
    QByteArrayList groups;
    QList<const table_column *> list;
    for (const table_column &column : columns) {
        if (!groups.contains(column.about.group))
            groups.append(column.about.group);
        if (column.values.is_filled())
            list.append(&column);
    }
    std::stable_sort(list.begin(), list.end(), [&groups](const table_column *one, const table_column *two) {
        return groups.indexOf(one->about.group) < groups.indexOf(two->about.group);
    });
    return list;
}

/** Hidden at first: what few ask for, and what another column has already. */
bool html_table::is_hidden(const table_column &column) const
{
    const auto twin = std::find_if(columns.cbegin(), columns.cend(), [&column](const table_column &other) {
        return !column.about.twin.isEmpty() && other.about.name == column.about.twin;
    });
    return column.about.is_hidden || column.about.name == opens
           || (twin != columns.cend() && twin->values.is_same_as(column.values));
}

QByteArray html_table::head(const QList<const table_column *> &shown) const
{
    QByteArray html = opens.isEmpty() ? "<th scope=\"col\">Row</th>" : "<th scope=\"col\">Device</th>";
    for (const table_column *column : shown)
        html += "<th scope=\"col\">" + text_of_page(column->about.heading) + "<small>"
                + text_of_page(column->about.name) + "</small></th>";
    return "<thead><tr aria-rowindex=\"1\">" + html + "</tr></thead>\n";
}

/** The first rows. Those that open a page have its name, which is all of the page that there is without script. */
QByteArray html_table::rows(const QList<const table_column *> &shown) const
{
    const auto numbers = std::find_if(columns.cbegin(), columns.cend(),
                                      [this](const table_column &column) { return column.about.name == opens; });
    QByteArray html = "<tbody>\n";
    for (qsizetype row = 0; row < std::min(row_count(), page_column::rows_without_script); ++row) {
        const QByteArray number = numbers == columns.cend() ? QByteArray::number(row + 1) : numbers->values.shown(row);
        html += "<tr aria-rowindex=\"" + QByteArray::number(row + 2) + '"';
        if (numbers != columns.cend())
            html += " id=\"" + opens + '-' + number + '"';
        html += "><td class=\"number\">" + number + "</td>";
        for (const table_column *column : shown)
            html += html_cell(column->values.shown(row), column->values.is_number());
        html += "</tr>\n";
    }
    return html + "</tbody>";
}

QByteArray html_table::section() const
{
    QByteArray html = "<section id=\"" + section_id + "\" class=\"rows\" aria-labelledby=\"" + section_id
                      + "-heading\"><h2 id=\"" + section_id + "-heading\">" + text_of_page(heading_text) + "</h2>\n<p>"
                      + caption_html + "</p>\n";
    if (row_count() == 0)
        return html + "<p>There are no rows.</p></section>\n";
    QByteArrayList empty;
    for (const table_column &column : columns) {
        if (!column.values.is_filled())
            empty.append(column.about.name);
    }
    if (!empty.isEmpty())
        html += "<details class=\"quiet\"><summary>" + counted(empty.size(), "column is", "columns are")
                + " \u2205 (NULL) in every row</summary><p>" + text_of_page(empty.join(", ")) + "</p></details>\n";
    html += "<div class=\"tools with-script\" hidden><label for=\"" + section_id
            + "-filter\">Filter</label><input id=\"" + section_id
            + "-filter\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\"><span role=\"status\">"
              "</span></div>\n<p class=\"print-note\"></p>\n";
    if (row_count() > page_column::rows_without_script)
        html += "<p class=\"without-script\">Without script these are the first "
                + QByteArray::number(page_column::rows_without_script) + " of " + QByteArray::number(row_count())
                + " rows.</p>\n";
    QList<const table_column *> shown = filled();
    shown.removeIf([this](const table_column *column) { return is_hidden(*column); });
    return html + "<div class=\"window\" tabindex=\"0\" role=\"region\" aria-label=\"" + text_of_page(heading_text)
           + ": rows\"><table aria-rowcount=\"" + QByteArray::number(row_count() + 1) + "\"><caption class=\"heard\">"
           + text_of_page(heading_text) + "</caption>\n" + head(shown) + rows(shown) + "</table></div></section>\n";
}

QByteArray html_table::column_about_json(const table_column &column) const
{
    const column_about &about = column.about;
    QByteArray json = "{\"name\":" + page_json(about.name) + ",\"heading\":" + page_json(about.heading)
                      + ",\"group\":" + page_json(about.group) + json_member("meaning", about.meaning)
                      + json_member("link", about.link);
    json += column.values.is_number() ? ",\"number\":true" : "";
    json += is_hidden(column) ? ",\"hidden\":true," : ",";
    return json;
}

void html_table::add_data(new_file &file) const
{
    const QList<const table_column *> list = filled();
    file.add(QByteArray("{\"id\":" + page_json(section_id) + ",\"count\":" + QByteArray::number(row_count())
                        + json_member("opens", opens) + ",\"columns\":["));
    for (qsizetype place = 0; place < list.size(); ++place) {
        const page_column &values = list.at(place)->values;
        const auto earlier = std::find_if(list.cbegin(), list.cbegin() + place,
                                          [&](const table_column *other) { return other->values.is_same_as(values); });
        const bool is_copy = earlier != list.cbegin() + place;
        file.add(place == 0 ? "\n" : ",\n");
        file.add(column_about_json(*list.at(place)));
        file.add(is_copy ? QByteArray("\"as\":" + QByteArray::number(earlier - list.cbegin())) : values.json());
        file.add("}");
    }
    file.add("]}");
}
