// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_WORKBOOK_H
#define HOST_REPORT_TABLES_WORKBOOK_H

#include "host/report/tables/table_store.h"

#include <memory>

/** How values stand in a workbook that are not the values themselves. */
struct workbook_notes
{
    qint64 cut = 0;     ///< texts of more than 32,767 characters, which no cell takes
    qint64 spelled = 0; ///< texts with U+0000, U+FFFE or U+FFFF, which XML has no form for: they stand as \u{fffe}
};

/** How many rows a sheet has, the heading among them: https://support.microsoft.com, Excel specifications and limits.
 */
constexpr int most_sheet_rows = 1048576;

/** Whether this build can write workbooks. */
bool has_workbooks();

/**
 * Makes report.xlsx: a sheet for each table, texts as texts, so that none is run as a formula; frozen headings,
 * filters. More than @p sheet_rows, the heading among them, go on in a further sheet. Integers beyond 2^53 are texts,
 * and so are blobs and texts that are no UTF-8 (x'00ff'). @p notes outlives it. Throws host_error (refused) where this
 * build cannot write workbooks.
 */
std::unique_ptr<table_store> make_workbook(const QString &path, workbook_notes &notes,
                                           int sheet_rows = most_sheet_rows);

#endif
