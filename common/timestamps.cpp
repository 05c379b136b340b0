// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/date_parsing.h"
#include "common/function_log.h"
#include "common/platform/reference_date.h"
#include "common/plugin_static_function.h"
#include "common/text_parts.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTimeZone>
#include <QtNumeric>

#include <time.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/** Seconds from 1601-01-01, from which browsers count, to 1970-01-01. */
constexpr qint64 seconds_from_1601_to_1970 = 11644473600;
constexpr quint64 microseconds_per_second = 1000000;

constexpr QStringView year_first(u"yyyy-MMM-dd hh:mm:ss");
constexpr QStringView month_first(u"MMM-dd-yyyy hh:mm:ss");
constexpr QStringView day_first(u"dd-MMM-yyyy hh:mm:ss");

/** How times are shown by one display format number. */
struct display_format
{
    QStringView pattern;
    QStringView local_time_pattern;
    const char *negative_time_pattern; ///< of strftime; null: such times are not shown
};

/** By number; the last row serves every other number. */
constexpr display_format display_formats[] = {
    {year_first, year_first, "%Y/%m/%d %H:%M:%S"},
    {month_first, month_first, "%m/%d/%Y %H:%M:%S"},
    {day_first, day_first, "%d/%m/%Y %H:%M:%S"},
    {day_first, year_first, nullptr},
};

const display_format &selected_format()
{
    const int number = plugin_static_function::examiner_selected_date_format_int;
    const int other = std::size(display_formats) - 1;
    return display_formats[number >= 0 && number < other ? number : other];
}

/** Empty for a year that is too large for the C library. */
QString negative_time_text(qint64 seconds)
{
    const char *pattern = selected_format().negative_time_pattern;
    const time_t time = seconds;
    tm parts;
    if (pattern == nullptr || gmtime_r(&time, &parts) == nullptr)
        return {};
    char text[80];
    return QString::fromLatin1(text, static_cast<qsizetype>(strftime(text, sizeof text, pattern, &parts)));
}

QString date_time_pattern(const QString &date, const QString &time)
{
    if (time.isEmpty())
        return u"yyyyMMdd"_s;
    if (time.contains(u'Z'))
        return u"yyyyMMdd hhmmssZ"_s;
    if (!date.contains(u'-'))
        return u"yyyyMMdd hhmmss"_s;
    return time.contains(u'.') ? u"yyyy-MM-dd hh:mm:ss.zzz"_s : u"yyyy-MM-dd hh:mm:ss"_s;
}

} // namespace

QString plugin_static_function::get_human_readable_time(QString seconds)
{
    seconds = seconds.trimmed();
    const int duration = first_part(seconds, u".").toInt();
    if (seconds.isEmpty() || duration < 0)
        return {};

    const int hours = duration / 3600;
    const int minutes = duration % 3600 / 60;
    const int rest = duration % 60;
    return hours > 0 ? QString::asprintf("%02d:%02d:%02d Hrs", hours, minutes, rest)
                     : QString::asprintf("%02d:%02d Min", minutes, rest);
}

QString plugin_static_function::convert_epoch_to_custom(QString seconds)
{
    const qint64 value = first_part(seconds.trimmed(), u".").toLongLong();
    qint64 shown = 0;
    if (value == 0 || qAddOverflow(value, examiner_selected_timezone_offset_qint64, &shown))
        return {};
    // Only times from 1970 on are moved by the machine's own offset.
    if (shown < 0)
        return negative_time_text(shown);
    if (qSubOverflow(shown, examiner_machine_timezone_offset_qint64, &shown))
        return {};
    return QDateTime::fromSecsSinceEpoch(shown, QTimeZone::utc()).toString(selected_format().pattern);
}

QString plugin_static_function::convert_apple_time_to_epoch(QString seconds)
{
    seconds = seconds.trimmed();
    if (seconds.isEmpty() || seconds == "0"_L1)
        return {};
    return QString::number(first_part(seconds, u".").toInt() + apple_reference_date);
}

QString plugin_static_function::convert_human_readable_to_epoch(QString date)
{
    date = date.trimmed();
    date = date.sliced(date.indexOf(u',') + 1);
    date = date.left(date.lastIndexOf(u' '));
    return whole_seconds_text(parse_as_utc(date.trimmed(), u"dd MMM yyyy hh:mm:ss"_s));
}

QString plugin_static_function::convert_human_readable_to_epoch_1(QString date)
{
    date = date.trimmed();
    QString zone;
    for (const QString &half_of_day : {u" AM "_s, u" PM "_s}) {
        if (!date.contains(half_of_day))
            continue;
        zone = second_part(date, half_of_day).trimmed();
        const QString kept = half_of_day.chopped(1);
        date.truncate(date.lastIndexOf(kept) + kept.size());
        break;
    }

    const QDateTime parsed = parse_as_utc(date, u"MMM d, yyyy, h:mm:ss AP"_s);
    if (zone == "UTC"_L1)
        return whole_seconds_text(parsed);
    const QDateTime local(parsed.date(), parsed.time());
    // What summer time skips was no time; Qt before 6.7 has no date for it either, later versions move it.
    return local.time() == parsed.time() ? whole_seconds_text(local) : QString();
}

QString plugin_static_function::convert_human_readable_to_epoch_2(QString date)
{
    constexpr qsizetype size_without_fraction = 19;
    date = date.trimmed();
    const bool east_of_utc = date.contains(u'+');
    const qsizetype sign = date.lastIndexOf(east_of_utc ? u'+' : u'-');
    if (sign == -1)
        return {};

    const qsizetype point = date.indexOf(u'.');
    const QString local = date.left(point == -1 ? size_without_fraction : point).trimmed();
    const qint64 offset = convert_timezone_to_seconds_1(date.sliced(sign + 1));
    const QDateTime parsed = parse_as_utc(local, u"yyyy-MM-dd hh:mm:ss"_s);
    return whole_seconds_text(parsed.addSecs(east_of_utc ? -offset : offset));
}

int plugin_static_function::convert_timezone_to_seconds_1(QString zone)
{
    zone = zone.trimmed();
    const qint64 hours = zone.left(2).toInt();
    const qint64 minutes = zone.mid(2).toInt();
    const qint64 seconds = (hours * 60 + minutes) * 60;
    return std::in_range<int>(seconds) ? static_cast<int>(seconds) : 0;
}

QString plugin_static_function::convert_timestamp_to_human_readable_in_GMT(QString seconds)
{
    const int value = first_part(seconds.trimmed(), u".").toInt();
    if (value == 0)
        return {};
    return QDateTime::fromSecsSinceEpoch(value, QTimeZone::utc()).toString(selected_format().pattern);
}

QString plugin_static_function::convert_timestamp_to_human_readable_with_timezone(QString seconds)
{
    constexpr function_log log(
        u"static QString plugin_static_function::convert_timestamp_to_human_readable_with_timezone(QString)");
    log(u"[convert_timestamp_to_human_readable_with_timezone] Start");
    const int value = first_part(seconds.trimmed(), u".").toInt();
    if (value == 0)
        return {};
    if (value < 0)
        return negative_time_text(value);
    return QDateTime::fromSecsSinceEpoch(value).toString(selected_format().local_time_pattern);
}

QString plugin_static_function::convert_T_Z_time_to_epoch(QString date)
{
    date = date.trimmed();
    const QStringView separator = date.contains(u'T') ? u"T" : u" ";
    const QString day = first_part(date, separator).trimmed();
    const QString time = second_part(date, separator).trimmed().replace(u'-', u':');
    const QString joined = day + u' ' + time;
    return whole_seconds_text(parse_as_utc(joined.trimmed(), date_time_pattern(day, time)));
}

QString plugin_static_function::convert_google_time_to_epoch(QString microseconds)
{
    constexpr qsizetype size_of_unix_seconds = 10;
    microseconds = microseconds.trimmed();
    if (microseconds == "0"_L1)
        return {};
    if (microseconds.size() == size_of_unix_seconds)
        return microseconds;

    bool readable = false;
    const quint64 seconds = microseconds.toULongLong(&readable) / microseconds_per_second;
    return readable ? QString::number(static_cast<qint64>(seconds) - seconds_from_1601_to_1970) : QString();
}

struct_GLOBAL_ARTIFACT_posix_timestamp plugin_static_function::get_posix_timestamp(QString path, QString prefix)
{
    if (!path.isEmpty())
        path.prepend(prefix);
    const QFileInfo file(path);
    if (!file.exists())
        return {};
    return {whole_seconds(file.birthTime()), whole_seconds(file.lastRead()), whole_seconds(file.lastModified())};
}
