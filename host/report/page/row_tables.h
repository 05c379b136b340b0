// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_ROW_TABLES_H
#define HOST_REPORT_PAGE_ROW_TABLES_H

#include "host/report/page/findings.h"
#include "host/report/page/html_table.h"
#include "host/report/page/log_timeline.h"
#include "host/report/reading/row_columns.h"

#include <QSet>

#include <map>
#include <memory>
#include <vector>

/** The rows of one result table of all sources, with their ranks and the numbers of their devices. */
class row_table
{
public:
    /** @p result_columns are those of the result table in all sources. */
    row_table(const report_case &the_case, const QString &table, const QStringList &result_columns);

    /** Rows come source by source. */
    void add(const report_row &row);

    /** What the findings ask of a row that stands on another page; for each row this or add(). */
    void count(const report_row &row);

    /** After the last row: @p devices are the numbers of the rows' devices, in the order of the rows. */
    void finish(const std::vector<qint64> &devices);

    html_table table;
    log_timeline times;
    qint64 differing = 0;
    qint64 left_out = 0; ///< rows of which the plug-in leaves something out by design
    qint64 sightings = 0;
    QSet<QByteArray> sighted; ///< by what the devices of logs differ

private:
    void add_sighting(const report_row &row);

    row_cells cells;
    std::vector<page_column *> columns; ///< by place in the row's cells; none: it is no cell
    page_column *device = nullptr;
};

// Lists of the host's own reading, of all sources. What cannot be read is added to @p problems, in plain words.

/** What write-ahead logs make of rows; counts what it finds. @p devices are the numbers of the lines' devices. */
html_table wal_table(const report_case &the_case, const std::vector<qint64> &devices, row_figures &counts,
                     QStringList &problems);

/** The devices of lists; @p devices are their numbers, in the order of the lines. */
html_table host_device_table(const report_case &the_case, const std::vector<qint64> &devices, QStringList &problems);

html_table unparsed_table(const report_case &the_case, QStringList &problems);
html_table salvage_table(const report_case &the_case, QStringList &problems);

#endif
