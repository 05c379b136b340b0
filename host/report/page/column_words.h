// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_COLUMN_WORDS_H
#define HOST_REPORT_PAGE_COLUMN_WORDS_H

#include "host/report/page/html_table.h"
#include "host/report/reading/report_column.h"

/** What the page says of a column that a report has: its heading, group and meaning, and whether it is hidden at first.
 */
column_about about_column(const report_column &column);

/** Of a column that the page itself adds; the name is one of a short list. */
column_about about_own_column(const QByteArray &name);

/** The dictionary of all columns, with id "terms". */
QByteArray terms_section();

#endif
