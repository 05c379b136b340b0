// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/source_matrix.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"

#include <algorithm>

namespace {

constexpr qsizetype most_sources = 40;
constexpr qsizetype most_rows = 20;
constexpr int names_width = 230;
constexpr int step = 26;
constexpr int row_height = 22;
constexpr int top = 40;

/** The sources that any of the devices is known to, in their order. */
QList<int> sources_of(const QList<const device_facts *> &devices)
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

QByteArray number(qint64 value)
{
    return QByteArray::number(value);
}

QByteArray line(const char *style, int x1, int y1, int x2, int y2)
{
    return "<line class=\"" + QByteArray(style) + "\" x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\""
           + number(x2) + "\" y2=\"" + number(y2) + "\"/>";
}

QByteArray text_at(int x, int y, const char *anchor, const QByteArray &text)
{
    return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" text-anchor=\"" + anchor + "\">" + text + "</text>";
}

/** What fits in front of a row. */
QByteArray short_name(const device_facts &facts)
{
    const QString name = page_text(name_of(*facts.device), 24);
    return number(facts.number) + ' ' + (name.isEmpty() ? QByteArray("no name") : name.toHtmlEscaped().toUtf8());
}

/** Three forms, so that no colour is needed. */
QByteArray mark(int x, int y, const device_facts &facts, int place)
{
    if (facts.paired_in.contains(place))
        return "<rect class=\"point\" x=\"" + number(x - 6) + "\" y=\"" + number(y - 6)
               + "\" width=\"12\" height=\"12\"/>";
    if (facts.seen_in.contains(place))
        return "<circle class=\"ring\" cx=\"" + number(x) + "\" cy=\"" + number(y) + "\" r=\"5\"/>";
    return line("ring", x - 5, y - 5, x + 5, y + 5) + line("ring", x - 5, y + 5, x + 5, y - 5);
}

QByteArray row_of(const device_facts &facts, const QList<int> &sources, int middle, int width)
{
    QByteArray html = line("axis", names_width - 10, middle, width - 14, middle)
                      + text_at(0, middle + 4, "start", short_name(facts));
    for (const int place : facts.device->sources) {
        const qsizetype column = sources.indexOf(place);
        if (column >= 0)
            html += mark(names_width + int(column) * step + 6, middle, facts, place);
    }
    return html;
}

QByteArray caption(qsizetype all_sources)
{
    return "Devices by the numbers of the sources. Square: paired or in use; ring: seen; cross: in a list alone."
           + (all_sources > most_sources
                  ? " The first " + number(most_sources) + " of " + grouped_digits(all_sources) + " sources are shown."
                  : QByteArray());
}

} // namespace

QByteArray source_matrix(const report_case &that_case, const QList<const device_facts *> &devices)
{
    const QList<const device_facts *> shown = devices.first(std::min(devices.size(), most_rows));
    const QList<int> all = sources_of(shown);
    const QList<int> sources = all.first(std::min(all.size(), most_sources));
    const int width = names_width + int(sources.size()) * step + 20;
    const int height = int(shown.size()) * row_height + top;
    QByteArray picture;
    for (qsizetype column = 0; column < sources.size(); ++column)
        picture += text_at(names_width + int(column) * step + 6, 20, "middle",
                           number(that_case.sources.at(sources.at(column)).record.number));
    for (qsizetype row = 0; row < shown.size(); ++row)
        picture += row_of(*shown.at(row), sources, top + int(row) * row_height, width);
    const QByteArray size = "width=\"" + number(width) + "\" height=\"" + number(height) + '"';
    return html_figure("Devices by the numbers of the sources",
                       "<svg viewBox=\"0 0 " + number(width) + ' ' + number(height) + "\" " + size
                           + " role=\"img\" aria-label=\"Devices by the numbers of the sources that know them; the "
                             "table below says the same\">"
                           + picture + "</svg>",
                       caption(all.size()));
}
