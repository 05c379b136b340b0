// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_table.h"

#include "host/report/page/html_text.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_columns_on_paper = 8; // more are printed row by row, each value with its column's name
constexpr QByteArrayView cell_start("<td");
constexpr QByteArrayView same_as_above("[]"); // in the data: the row above has the same value in this column
constexpr const char *null_cell = "<td><span class=\"null\">\u2205</span></td>";

/** A source may come to its columns in another order than the sources before it. */
void put(QByteArrayList &row, qsizetype place, const QByteArray &value, const QByteArray &filling)
{
    while (row.size() <= place)
        row.append(filling);
    row[place] = value;
}

} // namespace

html_table::html_table(const QString &id, const QString &heading, const QString &caption)
    : section_id(id)
    , heading_text(heading)
    , caption_text(caption)
{
}

void html_table::begin_row()
{
    rows.append(QByteArrayList());
    if (rows.size() <= rows_without_script)
        html_rows.append(QByteArrayList());
}

qsizetype html_table::place_of(const QString &column)
{
    const qsizetype place = columns.indexOf(column);
    if (place >= 0)
        return place;
    columns.append(column);
    is_filled.append(false);
    return columns.size() - 1;
}

void html_table::add(const QString &column, const cell &value)
{
    const qsizetype place = place_of(column);
    const bool is_there = value.kind != cell::type::null;
    is_filled[place] = is_filled.at(place) || is_there;
    put(rows.last(), place, page_json(value), "null");
    if (rows.size() <= rows_without_script)
        put(html_rows.last(), place, html_cell(value), null_cell);
}

void html_table::add(const QString &column, const std::optional<qint64> &number)
{
    add(column, cell::of_integer(number));
}

void html_table::add(const QString &column, QByteArrayView text)
{
    add(column, cell::of_text_or_null(text));
}

void html_table::set(qsizetype row, const QString &column, const std::optional<qint64> &number)
{
    const qsizetype place = place_of(column);
    is_filled[place] = is_filled.at(place) || number.has_value();
    rows[row][place] = page_json(cell::of_integer(number));
    if (row < html_rows.size())
        html_rows[row][place] = html_cell(cell::of_integer(number));
}

QList<qsizetype> html_table::filled_columns() const
{
    QList<qsizetype> places;
    for (qsizetype place = 0; place < columns.size(); ++place) {
        if (is_filled.at(place))
            places.append(place);
    }
    return places;
}

QByteArray html_table::section() const
{
    const QByteArray name = html_text(section_id);
    QByteArray html = "<section id=\"" + name + "\" aria-labelledby=\"" + name + "-heading\"><h2 id=\"" + name
                      + "-heading\">" + html_text(heading_text) + "</h2>\n<p>" + html_text(caption_text) + "</p>\n";
    if (rows.isEmpty())
        return html + "<p>There are no rows.</p></section>\n";

    QStringList empty;
    for (qsizetype place = 0; place < columns.size(); ++place) {
        if (!is_filled.at(place))
            empty.append(columns.at(place));
    }
    if (!empty.isEmpty())
        html += "<p class=\"quiet\">\u2205 (NULL) in every row: " + html_text(empty.join(u", "_s)) + "</p>\n";
    html +=
        "<div class=\"tools with-script\" hidden><label for=\"" + name + "-filter\">Filter</label><input id=\"" + name
        + "-filter\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\"><span role=\"status\"></span></div>\n";
    html += "<p class=\"print-only\"></p>\n";
    if (rows.size() > html_rows.size())
        html += "<p class=\"without-script\">Without script these are the first " + QByteArray::number(html_rows.size())
                + " of " + QByteArray::number(rows.size()) + " rows.</p>\n";
    const QList<qsizetype> places = filled_columns();
    html += "<div class=\"window\" tabindex=\"0\" role=\"region\" aria-label=\"" + html_text(heading_text)
            + ": rows\"><table" + (places.size() > most_columns_on_paper ? " class=\"wide\"" : "") + " aria-rowcount=\""
            + QByteArray::number(rows.size() + 1) + "\"><caption>" + html_text(heading_text)
            + "</caption>\n<thead><tr aria-rowindex=\"1\"><th scope=\"col\">Row</th>";
    for (const qsizetype place : places)
        html += "<th scope=\"col\" aria-sort=\"none\"><button type=\"button\">" + html_text(columns.at(place))
                + "</button></th>";
    html += "</tr></thead>\n<tbody>\n";
    for (qsizetype row = 0; row < html_rows.size(); ++row) {
        html += "<tr aria-rowindex=\"" + QByteArray::number(row + 2) + "\"><td class=\"number\">"
                + QByteArray::number(row + 1) + "</td>";
        for (const qsizetype place : places) {
            const QByteArray cell = place < html_rows.at(row).size() ? html_rows.at(row).at(place)
                                                                     : QByteArray(null_cell);
            html += cell_start + (" data-column=\"" + html_text(columns.at(place)) + '"')
                    + cell.sliced(cell_start.size());
        }
        html += "</tr>\n";
    }
    return html + "</tbody></table></div></section>\n";
}

QByteArray html_table::data() const
{
    const QList<qsizetype> places = filled_columns();
    QByteArray json = "{\"id\":" + page_json(section_id) + ",\"columns\":[";
    for (qsizetype i = 0; i < places.size(); ++i)
        json += (i == 0 ? "" : ",") + page_json(columns.at(places.at(i)));
    json += "],\"rows\":[";
    for (qsizetype row = 0; row < rows.size(); ++row) {
        json += row == 0 ? "\n[" : ",\n[";
        for (qsizetype i = 0; i < places.size(); ++i) {
            const QByteArray value = rows.at(row).value(places.at(i), "null");
            const bool is_same = row > 0 && value.size() > same_as_above.size()
                                 && value == rows.at(row - 1).value(places.at(i), "null");
            json += i == 0 ? "" : ",";
            json += is_same ? same_as_above : QByteArrayView(value);
        }
        json += ']';
    }
    return json + "]}";
}
