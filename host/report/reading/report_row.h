// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_REPORT_ROW_H
#define HOST_REPORT_READING_REPORT_ROW_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/row_reading.h"

#include <QString>

#include <functional>

/** A row of a result table with what the host knows of it. Valid during the call that it is given to. */
struct report_row
{
    const report_source &source;
    QString table;
    const sqlite_statement &plugin; ///< at the row
    const host_values &host;        ///< of its evidence
    QByteArrayView utf8_table;
    std::optional<qint64> rank_last_seen = {};
    std::optional<qint64> rank_last_connection = {};
    QByteArray last_seen_readings = {}; ///< counter_readings()
    notes_of_one notes = {};            ///< on the row itself, and on what it calls its device
    note_marks marks = {};

    const row_place &place() const
    {
        return host.place;
    }
};

/** What was read of one table of one source. */
struct table_reading
{
    qint64 rows = 0;
    QString problem; ///< why not all of it could be read; empty if all could
};

/** The names of the columns of result tables. */
struct column_names
{
    QStringList names;
    QStringList problems; ///< why not all are known: "source 1: …"
};

/**
 * The columns that a result table has in any of the sources: of the first one in their order, what others have more
 * behind them.
 */
column_names result_columns(const report_case &the_case, const QString &table);

/**
 * Calls @p take for each row of a result table, in their order. When there are not as many as the case's records say,
 * that is the problem of the reading. With @p depth the host's values are those of the counters alone.
 */
table_reading read_rows(const report_case &the_case, const report_source &source, const QString &table,
                        const std::function<void(const report_row &row)> &take,
                        reading_depth depth = reading_depth::everything);

/** The rows of all result tables of a case. */
struct counted_rows
{
    qint64 rows = 0;
    QStringList problems; ///< why not all were counted: "source 1: …"
};

counted_rows row_count(const report_case &the_case);

#endif
