// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_REPORT_ROW_H
#define HOST_REPORT_READING_REPORT_ROW_H

#include "host/report/reading/host_reading.h"
#include "host/report/reading/report_case.h"

#include <QString>

#include <functional>

/** A row of a result table with what the host knows of it. Valid while it is told. */
struct report_row
{
    const report_source &source;
    QString table;
    const sqlite_statement &plugin; ///< at the row
    const host_values &host;        ///< of its evidence
    QByteArrayView utf8_table;

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

/** The names of the columns of a result table, in its order; none where the source has no such table. */
QStringList result_columns(const report_case &that_case, const report_source &source, const QString &table);

/** Those of all sources: of the first one in their order, what others have more behind them. */
QStringList result_columns(const report_case &that_case, const QString &table);

/** Tells the rows of a result table in their order. */
table_reading read_rows(const report_case &that_case, const report_source &source, const QString &table,
                        const std::function<void(const report_row &row)> &tell);

/** How many rows all result tables of the case hold, as far as they can be counted. */
qint64 row_count(const report_case &that_case);

#endif
