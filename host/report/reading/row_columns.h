// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_ROW_COLUMNS_H
#define HOST_REPORT_READING_ROW_COLUMNS_H

#include "host/report/reading/report_column.h"
#include "host/report/reading/report_row.h"

#include <QList>
#include <QStringList>

/** What the host reads of a row's device. */
const line_columns<report_row> &host_columns();

/** What the counters of a row say beside those of the other rows, and what they would be as times. */
const line_columns<report_row> &rank_columns();

/** Puts rows of a result table, of one source or of several, into one list of columns. */
class row_cells
{
public:
    /** @p result_columns are those of the plug-in that the list has: result_columns() of a source or of the case. */
    explicit row_cells(const QStringList &result_columns);

    const QList<report_column> &columns() const
    {
        return list;
    }

    /** Valid until the next call, and as long as the row. */
    const line_cells &of(const report_row &row);

private:
    void begin_source(const report_row &row);

    QStringList names; ///< of the result's columns
    QList<report_column> list;
    const report_source *source = nullptr; ///< that the places below are of
    QList<int> places;                     ///< of the columns in its result table; -1: it has none of that name
    line_cells cells;                      ///< keeps its room from row to row
};

#endif
