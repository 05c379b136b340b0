// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_CASE_LISTS_H
#define HOST_REPORT_TABLES_CASE_LISTS_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"

#include <QLatin1StringView>
#include <QList>
#include <QStringList>

#include <functional>

using line_taker = std::function<void(const line_cells &cells)>;

/** A list of a case that is no table of its results, and whose lines stand alone. */
struct case_list
{
    QLatin1StringView name; ///< of its files and tables: "evidence_files"
    QList<report_column> columns;
    bool is_separated; ///< there are files of separated values of it, too
    /** Gives all lines, source by source. Returns why some are missing: "source 1: …". */
    std::function<QStringList(const line_taker &take)> read;
};

/** The lists of a case, in the order of a report; containers only where there are some. They read the case each time.
 */
QList<case_list> case_lists(const report_case &the_case);

#endif
