// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/used_dates.h"

#include "common/date_parsing.h"
#include "common/plugin_static_function.h"

using namespace Qt::StringLiterals;

struct_GLOBAL_ARTIFACT_used_dates parse_used_dates(const spotlight_descriptions &descriptions)
{
    struct_GLOBAL_ARTIFACT_used_dates dates;
    dates.last_used_date = whole_seconds_text(parse_iso_as_utc(descriptions.last_used_date.trimmed()));

    QString listing = descriptions.used_dates;
    for (const QChar around : u"()\""_s)
        listing.remove(around);
    const QStringList entries = listing.split(u',');
    for (const QString &entry : entries) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        const QString seconds = whole_seconds_text(parse_iso_as_utc(entry.trimmed()));
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
