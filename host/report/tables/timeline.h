// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_TIMELINE_H
#define HOST_REPORT_TABLES_TIMELINE_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/** What the examiner says of times that do not say it themselves. */
struct timeline_options
{
    std::optional<qint64> log_year;     ///< of the first device line of each log
    std::optional<int> log_zone;        ///< of all logs, in seconds east of UTC
    std::optional<qint64> mobile_epoch; ///< 1970 or 2001: what times of the mobile lists count from
};

/** One time of a case whose clock is known. */
struct timeline_event
{
    qint64 timestamp = 0; ///< microseconds since 1970, UTC
    QByteArray message;
    QByteArray datetime; ///< ISO 8601 with zone
    QByteArray description;
    qint64 source = 0;
    QByteArray device; ///< what the source identifies it by
    QByteArray address;
    QByteArray name;
    QByteArray locator;
};

/** As Timesketch takes them. */
const line_columns<timeline_event> &timeline_columns();

struct timeline
{
    std::vector<timeline_event> events; ///< sorted
    QMap<QByteArray, qint64> left_out;  ///< how many times, by reason
    QStringList problems;               ///< why not all could be read: "source 1: …"

    /** A sentence for each reason. */
    QStringList left_out_texts() const;
};

/** By their times; those of one time as they come. */
void sort_events(std::vector<timeline_event> &events);

/** All times of a case. Every event is held. @p counters: how many the rows of its results have, which are no dates. */
timeline read_timeline(const report_case &the_case, const timeline_options &options, qint64 counters = 0);

#endif
