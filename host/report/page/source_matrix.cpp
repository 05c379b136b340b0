// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/source_matrix.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"
#include "host/report/page/svg_parts.h"

#include <algorithm>

namespace {

constexpr qsizetype most_matrix_sources = 40;
constexpr qsizetype most_matrix_rows = 20;
constexpr int step = 26;
constexpr int row_height = 22;
constexpr int matrix_top = 40;

/** The sources that any of the devices is known to, in their order. */
QList<int> matrix_sources(const QList<const device_facts *> &devices)
{
    QList<int> places;
    for (const device_facts *facts : devices) {
        for (const int place : facts->device->sources) {
            if (!places.contains(place))
                places.append(place);
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

/** Three forms, so that no colour is needed. */
QByteArray mark(int x, int y, const device_facts &facts, int place)
{
    if (facts.paired_in.contains(place))
        return "<rect class=\"point\" x=\"" + svg_number(x - 6) + "\" y=\"" + svg_number(y - 6)
               + "\" width=\"12\" height=\"12\"/>";
    if (facts.seen_in.contains(place))
        return "<circle class=\"ring\" cx=\"" + svg_number(x) + "\" cy=\"" + svg_number(y) + "\" r=\"5\"/>";
    return svg_line("ring", x - 5, y - 5, x + 5, y + 5) + svg_line("ring", x - 5, y + 5, x + 5, y - 5);
}

QByteArray matrix_row(const device_facts &facts, const QList<int> &sources, int middle, int width)
{
    QByteArray html = svg_line("axis", svg_names_width - 10, middle, width - 14, middle)
                      + svg_text(0, middle + 4, "start", svg_device_name(facts.number, name_of(*facts.device), 24));
    for (const int place : facts.device->sources) {
        const qsizetype column = sources.indexOf(place);
        if (column >= 0)
            html += mark(svg_names_width + int(column) * step + 6, middle, facts, place);
    }
    return html;
}

QByteArray matrix_caption(qsizetype all_sources)
{
    return "Devices by the numbers of the sources. Square: paired or in use; ring: seen; cross: in a list alone."
           + (all_sources > most_matrix_sources ? " The first " + svg_number(most_matrix_sources) + " of "
                                                      + grouped_digits(all_sources) + " sources are shown."
                                                : QByteArray());
}

} // namespace

QByteArray source_matrix(const report_case &the_case, const QList<const device_facts *> &devices)
{
    const QList<const device_facts *> shown = devices.first(std::min(devices.size(), most_matrix_rows));
    const QList<int> all = matrix_sources(shown);
    const QList<int> sources = all.first(std::min(all.size(), most_matrix_sources));
    const int width = svg_names_width + int(sources.size()) * step + 20;
    const int height = int(shown.size()) * row_height + matrix_top;
    QByteArray picture;
    for (qsizetype column = 0; column < sources.size(); ++column)
        picture += svg_text(svg_names_width + int(column) * step + 6, 20, "middle",
                            svg_number(the_case.sources.at(sources.at(column)).record.number));
    for (qsizetype row = 0; row < shown.size(); ++row)
        picture += matrix_row(*shown.at(row), sources, matrix_top + int(row) * row_height, width);
    const QByteArray size = "width=\"" + svg_number(width) + "\" height=\"" + svg_number(height) + '"';
    return html_figure("Devices by the numbers of the sources",
                       "<svg viewBox=\"0 0 " + svg_number(width) + ' ' + svg_number(height) + "\" " + size
                           + " role=\"img\" aria-label=\"Devices by the numbers of the sources that know them; the "
                             "table below says the same\">"
                           + picture + "</svg>",
                       matrix_caption(all.size()));
}
