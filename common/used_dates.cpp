// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/used_dates.h"

#include "common/plugin_static_function.h"

#include <QDateTime>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace
{

/** Unix seconds of an ISO date whose clock time is UTC, whatever zone it names. Empty when it is none. */
QString iso_date_to_epoch(const QString &text)
{
    static const QRegularExpression zone(uR"((Z| ?[+-]\d\d:?\d\d)$)"_s); // with the blank as Spotlight prints it
    QString date_text = text.trimmed().remove(zone);
    if (!date_text.contains(u':'))
        date_text += u"T00:00:00"_s;
    const QDateTime date = QDateTime::fromString(date_text + u'Z', Qt::ISODate);
    return date.isValid() ? QString::number(date.toSecsSinceEpoch()) : QString();
}

} // namespace

struct_GLOBAL_ARTIFACT_used_dates parse_used_dates(const spotlight_descriptions &descriptions)
{
    struct_GLOBAL_ARTIFACT_used_dates dates;
    dates.last_used_date = iso_date_to_epoch(descriptions.last_used_date);

    QString listing = descriptions.used_dates;
    for (const QChar around : u"()\""_s)
        listing.remove(around);
    const QStringList entries = listing.split(u',');
    for (const QString &entry : entries) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        const QString seconds = iso_date_to_epoch(entry);
        if (!seconds.isEmpty())
            dates.used_dates_list.append(seconds);
    }
    if (!dates.used_dates_list.isEmpty()) {
        dates.first_used_date = dates.used_dates_list.constFirst();
        dates.last_entry_used_date = dates.used_dates_list.constLast();
    }
    return dates;
}

struct_GLOBAL_ARTIFACT_used_dates plugin_static_function::extract_used_date(QString path)
{
    return parse_used_dates(read_spotlight_descriptions(path));
}
