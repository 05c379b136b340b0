// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/date_parsing.h"

using namespace Qt::StringLiterals;

namespace {

/** No notation is nearly as long; a longer text is not worth the parser's time. */
constexpr qsizetype longest_date = 64;

} // namespace

QDateTime parse_as_utc(const QString &text, const QString &pattern)
{
    if (text.size() > longest_date)
        return {};
    // Without a zone in the text Qt reads local time first and refuses what the local zone skips.
    return QDateTime::fromString(text + u" +00:00"_s, pattern + u" t"_s);
}

QDateTime parse_iso_as_utc(const QString &text)
{
    if (text.size() > longest_date)
        return {};
    QString date = text;
    date.replace(u" +"_s, u"+"_s).replace(u" -"_s, u"-"_s);
    // Try with "Z" appended first; a text that already has a zone cannot match that.
    const QString readings[] = {date + u'Z', date + u"T00:00Z"_s, date};
    for (const QString &reading : readings) {
        const QDateTime parsed = QDateTime::fromString(reading, Qt::ISODate);
        if (parsed.isValid())
            return parsed.toUTC();
    }
    return {};
}

qint64 whole_seconds(const QDateTime &date)
{
    return date.isValid() ? date.toMSecsSinceEpoch() / 1000 : 0;
}

QString whole_seconds_text(const QDateTime &date)
{
    return date.isValid() ? QString::number(whole_seconds(date)) : QString();
}
