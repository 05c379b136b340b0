// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/log_timeline.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"
#include "host/report/page/svg_parts.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr qint64 day = 86400;
constexpr std::array<int, 12> days = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}; // of a year that is not known
constexpr qint64 longest_year = 366 * day;
constexpr QByteArrayView months("JanFebMarAprMayJunJulAugSepOctNovDec");

constexpr int lane_width = 640;
constexpr int lane_height = 34;
constexpr int top = 28;
constexpr int weakest = -100; // dBm, at the foot of a lane
constexpr int strongest = -30;

std::optional<int> digits(QByteArrayView text)
{
    bool is_number = false;
    const int number = text.toByteArray().trimmed().toInt(&is_number);
    return is_number && number >= 0 ? std::optional(number) : std::nullopt;
}

/** As the log writes it. */
QByteArray date_text(qint64 second)
{
    qint64 rest = second % longest_year;
    std::size_t month = 0;
    while (rest >= days[month] * day)
        rest -= days[month++] * day;
    const auto two = [](qint64 number) { return QByteArray::number(number).rightJustified(2, '0'); };
    return months.sliced(qsizetype(month) * 3, 3).toByteArray() + ' ' + QByteArray::number(rest / day + 1) + ' '
           + two(rest % day / 3600) + ':' + two(rest % 3600 / 60) + ':' + two(rest % 60);
}

QByteArray duration_text(qint64 seconds)
{
    if (seconds < 60)
        return counted(seconds, "second", "seconds");
    if (seconds < qint64(2) * 3600)
        return counted(seconds / 60, "minute", "minutes");
    return seconds < 2 * day ? counted(seconds / 3600, "hour", "hours") : counted(seconds / day, "day", "days");
}

/** The sightings of one device in a log. */
struct lane
{
    qint64 device;
    const device_facts *facts;
    qint64 count = 0;
    qint64 first = 0;
    qint64 last = 0;
    qint64 longest_gap = 0;
    std::optional<int> best = {};                   ///< RSSI
    std::map<int, std::optional<int>> best_at = {}; ///< by place on the axis
};

QByteArray lane_name(const lane &lane)
{
    return lane.facts ? name_of(*lane.facts->device) : QByteArray();
}

/** A point for each place on the axis; without an RSSI it stands at the foot, and hollow. */
QByteArray lane_picture(const lane &lane, int foot)
{
    QByteArray html = svg_line("axis", svg_names_width, foot, svg_names_width + lane_width, foot)
                      + svg_text(svg_names_width - 8, foot - 8, "end",
                                 svg_device_name(lane.device, lane_name(lane), 20));
    for (const auto &[place, rssi] : lane.best_at) {
        const int height = rssi ? (std::clamp(*rssi, weakest, strongest) - weakest) * (lane_height - 8)
                                      / (strongest - weakest)
                                : 0;
        html += "<circle class=\"" + QByteArray(rssi ? "point" : "ring") + "\" cx=\""
                + svg_number(svg_names_width + place) + "\" cy=\"" + svg_number(foot - height) + "\" r=\"2.5\"/>";
    }
    return html;
}

bool has_strength(const std::vector<lane> &lanes)
{
    return std::any_of(lanes.cbegin(), lanes.cend(), [](const lane &one) { return one.best.has_value(); });
}

QByteArray picture(const std::vector<lane> &lanes, qint64 first, qint64 last, const QByteArray &title)
{
    const int foot = top + int(lanes.size()) * lane_height;
    QByteArray html;
    constexpr int ticks = 3;
    for (int tick = 0; tick <= ticks; ++tick) {
        const qint64 x = svg_names_width + qint64(lane_width) * tick / ticks;
        html += svg_line("axis", x, top, x, foot)
                + svg_text(x, 16,
                           tick == 0       ? "start"
                           : tick == ticks ? "end"
                                           : "middle",
                           date_text(first + (last - first) * tick / ticks));
    }
    for (std::size_t i = 0; i < lanes.size(); ++i)
        html += lane_picture(lanes[i], top + int(i + 1) * lane_height);
    const QByteArray caption = has_strength(lanes)
                                   ? "A line for each device. Height: signal strength, -100 dBm at the foot to -30; a "
                                     "ring has none."
                                   : "A line for each device; no signal strength is known.";
    return html_figure(title,
                       "<svg class=\"wide\" viewBox=\"0 0 " + svg_number(svg_names_width + lane_width + 8) + ' '
                           + svg_number(foot + 8) + "\" role=\"img\" aria-label=\"" + title
                           + "; the table below says the same\">" + html + "</svg>",
                       caption);
}

QByteArray table(const QByteArray &caption, const std::vector<lane> &lanes, const timeline_form &form)
{
    const bool is_heard = has_strength(lanes);
    QByteArrayList headings{"Device", "Name", form.words.title, "First", "Last", "Longest gap"};
    if (is_heard)
        headings.append("Strongest, dBm");
    QByteArray rows;
    for (const lane &one : lanes) {
        const QByteArray device = svg_number(one.device);
        QByteArrayList cells{form.has_pages ? html_link("device-" + device, device) : device,
                             html_name(lane_name(one), form.most_columns),
                             grouped_digits(one.count),
                             html_whole(date_text(one.first)),
                             html_whole(date_text(one.last)),
                             one.count > 1 ? html_whole(duration_text(one.longest_gap)) : QByteArray()};
        if (is_heard)
            cells.append(one.best ? html_whole(svg_number(*one.best)) : QByteArray());
        rows += html_row(cells);
    }
    return html_static_table(caption, headings, rows);
}

} // namespace

std::optional<qint64> second_of_year(QByteArrayView date)
{
    if (date.size() < 15 || date.at(3) != ' ' || date.at(9) != ':' || date.at(12) != ':')
        return {};
    const qsizetype month = months.indexOf(date.first(3));
    const auto in_month = digits(date.sliced(4, 2));
    const auto hour = digits(date.sliced(7, 2));
    const auto minute = digits(date.sliced(10, 2));
    const auto second = digits(date.sliced(13, 2));
    if (month < 0 || month % 3 != 0 || !in_month || !hour || !minute || !second || *in_month < 1
        || *in_month > days[std::size_t(month / 3)] || *hour > 23 || *minute > 59 || *second > 60)
        return {};
    qint64 before = 0;
    for (std::size_t i = 0; i < std::size_t(month / 3); ++i)
        before += days[i];
    return (before + *in_month - 1) * day + qint64(*hour) * 3600 + qint64(*minute) * 60 + *second;
}

void log_timeline::add(const report_source &source, const cell &date, const cell &rssi)
{
    const std::size_t row = rows++;
    if (date.is_null())
        return;
    if (logs.empty() || logs.back().source != &source)
        logs.push_back({&source, 0, 0, {}});
    dated_log &log = logs.back();
    const std::optional<qint64> second = second_of_year(date.bytes);
    if (!second) {
        ++log.without_date;
        return;
    }
    qint64 time = *second + log.years * longest_year;
    if (!log.sightings.empty() && time + longest_year / 2 < log.sightings.back().second) {
        ++log.years;
        time += longest_year;
    }
    const bool has_rssi = rssi.kind == cell::type::integer;
    log.sightings.push_back({row, time, has_rssi ? std::optional(int(rssi.integer)) : std::nullopt});
}

QByteArray log_timeline::html_of(const dated_log &log, const QList<device_facts> &devices,
                                 const std::vector<qint64> &device_of_row, const timeline_form &form)
{
    const auto [earliest, latest] = std::minmax_element(log.sightings.cbegin(), log.sightings.cend(),
                                                        [](const sighting &one, const sighting &two) {
                                                            return one.second < two.second;
                                                        });
    const qint64 first = earliest->second;
    const qint64 length = std::max<qint64>(latest->second - first, 1);
    std::map<qint64, lane> by_device;
    for (const sighting &one : log.sightings) {
        const qint64 device = one.row < device_of_row.size() ? device_of_row[one.row] : 0;
        lane &lane = by_device.try_emplace(device, ::lane{.device = device, .facts = device_numbered(devices, device)})
                         .first->second;
        if (lane.count++ == 0)
            lane.first = lane.last = one.second;
        lane.longest_gap = std::max(lane.longest_gap, one.second - lane.last);
        lane.first = std::min(lane.first, one.second);
        lane.last = std::max(lane.last, one.second);
        lane.best = std::max(lane.best, one.rssi);
        std::optional<int> &best = lane.best_at[int((one.second - first) * lane_width / length)];
        best = std::max(best, one.rssi);
    }
    std::vector<lane> lanes;
    lanes.reserve(by_device.size());
    for (const auto &[device, lane] : by_device)
        lanes.push_back(lane);
    const auto is_before = [](const lane &one, const lane &two) {
        const bool is_one_of_note = one.facts && one.facts->is_of_note();
        const bool is_two_of_note = two.facts && two.facts->is_of_note();
        return is_one_of_note != is_two_of_note ? is_one_of_note : one.count > two.count;
    };
    std::stable_sort(lanes.begin(), lanes.end(), is_before);
    const std::size_t all = lanes.size();
    lanes.resize(std::min(all, form.most_lanes));

    QByteArray html = "<h3>Source " + svg_number(log.source->record.number) + ": <bdi>" + html_text(log.source->name)
                      + "</bdi>" + form.words.heading + "</h3>\n<p>"
                      + counted(qint64(log.sightings.size()), form.words.one, form.words.many) + " of "
                      + counted(qint64(all), "device", "devices") + ", from " + date_text(first) + " to "
                      + date_text(latest->second) + " as the log writes dates.";
    if (all > lanes.size())
        html += " The first " + svg_number(qint64(lanes.size()))
                + " devices are shown: those with a name, paired or shared before others, then by number of "
                + form.words.many + '.';
    if (log.without_date > 0)
        html += ' ' + counted(log.without_date, "row has", "rows have") + " a date of another form and is left out.";
    const QByteArray title = "Source " + svg_number(log.source->record.number) + ": " + form.words.many;
    return html + "</p>\n" + picture(lanes, first, latest->second, title + " by time")
           + table(title + " by device", lanes, form);
}

QByteArray log_timeline::html(const QList<device_facts> &devices, const std::vector<qint64> &device_of_row,
                              const timeline_form &form) const
{
    QByteArray html;
    std::size_t shown = 0;
    for (const dated_log &log : logs) {
        if (log.sightings.empty() || ++shown > form.most_logs)
            continue;
        html += html_of(log, devices, device_of_row, form);
    }
    if (shown > form.most_logs)
        html += "<p>And " + svg_number(qint64(shown - form.most_logs))
                + " more logs; the rows of all stand in the tables of the full report.</p>\n";
    return html;
}
