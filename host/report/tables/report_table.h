// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_REPORT_TABLE_H
#define HOST_REPORT_TABLES_REPORT_TABLE_H

#include "host/report/tables/row_formats.h"

#include <QString>
#include <QStringList>

#include <optional>

/** A table of a case in a format for programs. */
struct table_request
{
    QString case_directory; ///< absolute
    QString table;
    program_format format;
    std::optional<qint64> source; ///< the number; none: every source
};

/**
 * Gives @p sink the bytes that a report's file of that table and format has. Returns what the case or the table lacks,
 * in plain words. Throws host_error: input when there is no case, usage when it has no such source.
 */
QStringList write_table(const table_request &request, const byte_sink &sink);

#endif
