// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/timeline.h"

#include "host/report/reading/host_device_line.h"
#include "host/report/reading/kept_lines.h"
#include "host/report/reading/log_date.h"
#include "host/report/reading/log_line.h"
#include "host/report/reading/unparsed_line.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *no_dates = "counters of databases, which are no dates";
constexpr const char *no_year = "lines of logs without year and zone: --log-year and --log-zone place them";
constexpr const char *no_date = "lines of logs without a date of a known form";
constexpr const char *no_epoch = "times of mobile lists whose start is not known: --mobile-epoch says it";
constexpr const char *beyond = "times of mobile lists that lie beyond the year 9000";
constexpr const char *never = "times that say never";

constexpr qint64 seconds_to_2001 = 978307200;
constexpr qint64 most_seconds = qint64(7000) * 366 * 24 * 3600;

/** "2024-05-17T12:11:05.123+02:00" */
QByteArray iso_text(const QDateTime &time)
{
    const QDateTime zoned = time.timeSpec() == Qt::UTC ? time.toOffsetFromUtc(0) : time;
    const bool is_whole = zoned.time().msec() == 0;
    QString text = zoned.toString(is_whole ? u"yyyy-MM-ddTHH:mm:ss"_s : u"yyyy-MM-ddTHH:mm:ss.zzz"_s);
    const int minutes = zoned.offsetFromUtc() / 60;
    return (text + (minutes < 0 ? u'-' : u'+')).toLatin1()
           + QByteArray::number(std::abs(minutes) / 60).rightJustified(2, '0') + ':'
           + QByteArray::number(std::abs(minutes) % 60).rightJustified(2, '0');
}

/** The digits behind the point of an ISO 8601 text. */
QByteArrayView fraction_in(QByteArrayView iso)
{
    const qsizetype point = iso.indexOf('.');
    if (point < 0)
        return {};
    const QByteArrayView rest = iso.sliced(point + 1);
    const auto *const end = std::find_if(rest.begin(), rest.end(), [](char one) { return one < '0' || one > '9'; });
    return rest.first(end - rest.begin());
}

qint64 microseconds_in(QByteArrayView iso)
{
    return fraction_in(iso).toByteArray().leftJustified(6, '0', true).toLongLong();
}

/** Without the fraction, which Qt would round, up to the next second. */
QDateTime whole_second_of(QByteArrayView iso)
{
    QByteArray text = iso.toByteArray();
    if (const QByteArrayView fraction = fraction_in(iso); !fraction.isEmpty())
        text.remove(fraction.data() - iso.data() - 1, fraction.size() + 1);
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
}

qint64 timestamp_of(QByteArrayView iso)
{
    return whole_second_of(iso).toSecsSinceEpoch() * 1000000 + microseconds_in(iso);
}

QByteArray place_text(const row_place &place, QByteArrayView path)
{
    if (place.line)
        return place.file + " line " + QByteArray::number(*place.line);
    return path.isEmpty() ? place.file : place.file + ' ' + path.toByteArray();
}

class timeline_reader
{
public:
    timeline_reader(const report_case &read_case, const timeline_options &given)
        : the_case(read_case)
        , options(given)
    {
    }

    timeline read()
    {
        for (const report_source &source : the_case.sources) {
            if (source.is_locked)
                continue;
            read_lists(source);
            read_log(source);
        }
        sort_events(result.events);
        return result;
    }

private:
    void note(const report_source &source, const QString &problem)
    {
        if (!problem.isEmpty())
            result.problems.append(source.problem_text(problem));
    }

    void read_lists(const report_source &source)
    {
        note(source, for_each_host_device(the_case, source, [this](const host_device_line &device) {
                 QJsonObject last;
                 for (const auto time : device.kept.json.value("times"_L1).toArray()) {
                     if (!is_another_reading(last, time.toObject()))
                         add_list_time(device, time.toObject());
                     last = time.toObject();
                 }
             }));
    }

    /** A number of unknown start stands in the list once for each reading, and is one time. */
    static bool is_another_reading(const QJsonObject &one, const QJsonObject &next)
    {
        return next.value("clock"_L1) == "unknown"_L1 && one.value("name"_L1) == next.value("name"_L1)
               && one.value("raw"_L1) == next.value("raw"_L1);
    }

    /** What the time is; of a number of unknown start by the start that was given. */
    QByteArray meaning_of(const QJsonObject &time) const
    {
        if (time.value("clock"_L1) == "utc"_L1)
            return bytes_of_json(time.value("meaning"_L1));
        return bytes_of_json(time.value("name"_L1)) + " of the mobile list, taken as seconds since "
               + QByteArray::number(options.mobile_epoch.value_or(0));
    }

    void add_list_time(const host_device_line &device, const QJsonObject &time)
    {
        const QByteArray iso = time_of(time);
        if (iso.isEmpty())
            return;
        timeline_event event;
        event.timestamp = timestamp_of(iso);
        event.datetime = iso_text(whole_second_of(iso).addMSecs(microseconds_in(iso) / 1000));
        event.description = meaning_of(time);
        event.source = device.source.record.number;
        event.address = device.address_normal.isEmpty() ? device.address : device.address_normal;
        event.device = event.address;
        event.name = device.names;
        event.locator = place_text(device.place(), device.path);
        event.message = event.description + ": " + (event.name.isEmpty() ? event.address : event.name);
        result.events.push_back(event);
    }

    /** ISO 8601 in UTC; empty, and counted, for a time that no event can have. */
    QByteArray time_of(const QJsonObject &time)
    {
        const QJsonValue raw = time.value("raw"_L1);
        const bool is_known = time.value("clock"_L1) == "utc"_L1;
        if (is_known && !time.value("utc"_L1).isString())
            ++result.left_out[never];
        else if (is_known)
            return bytes_of_json(time.value("utc"_L1));
        else if (!options.mobile_epoch || !raw.isDouble())
            ++result.left_out[no_epoch];
        else
            return counted_from_epoch(raw.toInteger());
        return {};
    }

    QByteArray counted_from_epoch(qint64 seconds)
    {
        if (seconds < 0 || seconds > most_seconds) {
            ++result.left_out[beyond];
            return {};
        }
        const qint64 start = *options.mobile_epoch == 2001 ? seconds_to_2001 : 0;
        return QDateTime::fromSecsSinceEpoch(start + seconds, Qt::UTC).toString(Qt::ISODate).toLatin1();
    }

    void read_log(const report_source &source)
    {
        std::optional<qint64> last_line;
        std::optional<int> last_month;
        qint64 year = options.log_year.value_or(0);
        const QList<evidence_file> &files = source.record.evidence.files;
        const QByteArray log = files.isEmpty() ? QByteArray() : files.first().path.toUtf8();
        const QString path = the_case.layout.source(source.record.number).ios_lines();
        note(source, for_each_kept_line(path, [&](const kept_line &line) {
                 const std::optional<qint64> number = line.number("line"_L1);
                 if (number && number == last_line) // it has the words of both tables
                     return;
                 last_line = number;
                 const QByteArray text = line.bytes("text"_L1);
                 const std::optional<yearless_date> date = date_without_year(text);
                 if (date && last_month == 12 && date->month == 1)
                     ++year;
                 if (date)
                     last_month = date->month;
                 add_line(source, {log, {}, {}, number, {}}, text, date, year);
             }));
        note(source, for_each_unparsed_line(the_case, source, [&](const unparsed_line &line) {
                 if (!line.date.isEmpty())
                     add_line(source, line.place(), line.text, {}, 0);
             }));
    }

    void add_line(const report_source &source, const row_place &place, const QByteArray &text,
                  const std::optional<yearless_date> &date, qint64 year)
    {
        const QByteArray iso = date ? placed(*date, year) : zoned_date(text);
        if (iso.isEmpty()) {
            if (!date)
                ++result.left_out[no_date];
            return;
        }
        const device_line fields = read_device_line(text);
        timeline_event event;
        event.timestamp = timestamp_of(iso);
        event.datetime = iso;
        event.message = text;
        event.description = "Line of a log";
        event.source = source.record.number;
        event.device = fields.identifier.value_or(QByteArray());
        event.address = event.device.contains(':') ? event.device : QByteArray();
        event.name = fields.name.value_or(QByteArray());
        event.locator = place_text(place, {});
        result.events.push_back(event);
    }

    /** ISO 8601 where the examiner says year and zone; else empty, and counted. */
    QByteArray placed(const yearless_date &date, qint64 year)
    {
        const QDate day(int(year), date.month, date.day);
        if (!options.log_year || !options.log_zone)
            ++result.left_out[no_year];
        else if (!day.isValid())
            ++result.left_out[no_date];
        else
            return iso_text(QDateTime(day, date.time, Qt::OffsetFromUTC, *options.log_zone));
        return {};
    }

    const report_case &the_case;
    const timeline_options &options;
    timeline result;
};

template<QByteArray timeline_event::*Text>
cell text(const timeline_event &event)
{
    return cell::of_text_or_null(event.*Text);
}

} // namespace

const line_columns<timeline_event> &timeline_columns()
{
    using group = column_group;
    using one = timeline_event;
    // clang-format off
    static const line_columns<timeline_event> columns{
        {{"message"_ba, group::line, {}, {}, "Event"_L1, "what the source says"_L1}, text<&one::message>},
        {{"datetime"_ba, group::line, {}, {}, "Time"_L1, "ISO 8601, with the zone of the source or the one that was given"_L1}, text<&one::datetime>},
        {{"timestamp"_ba, group::line, {}, {}, "Microseconds since 1970"_L1, "the same time in UTC"_L1},
         [](const timeline_event &event) { return cell::of_integer(event.timestamp); }},
        {{"timestamp_desc"_ba, group::line, {}, {}, "Meaning of the time"_L1, "which time it is"_L1}, text<&one::description>},
        {{"source"_ba, group::line, {}, {}, "Source"_L1, "the number of the source in the case"_L1},
         [](const timeline_event &event) { return cell::of_integer(event.source); }},
        {{"device"_ba, group::line, {}, {}, "Device"_L1, "what the source identifies it by"_L1}, text<&one::device>},
        {{"address"_ba, group::line, {}, {}, "Address"_L1, "of the device, where there is one"_L1}, text<&one::address>},
        {{"name"_ba, group::line, {}, {}, "Name"_L1, "of the device, where there is one"_L1}, text<&one::name>},
        {{"locator"_ba, group::line, {}, {}, "Place"_L1, "where in the evidence the time stands"_L1}, text<&one::locator>},
    };
    // clang-format on
    return columns;
}

QStringList timeline::left_out_texts() const
{
    QStringList texts;
    for (auto reason = left_out.cbegin(); reason != left_out.cend(); ++reason) {
        if (reason.value() > 0)
            texts.append(u"left out of the timeline: "_s + QString::number(reason.value()) + u' '
                         + QString::fromUtf8(reason.key()));
    }
    return texts;
}

void sort_events(std::vector<timeline_event> &events)
{
    std::stable_sort(events.begin(), events.end(), [](const timeline_event &one, const timeline_event &two) {
        return one.timestamp < two.timestamp;
    });
}

timeline read_timeline(const report_case &the_case, const timeline_options &options, qint64 counters)
{
    timeline result = timeline_reader(the_case, options).read();
    result.left_out[no_dates] = counters;
    return result;
}
