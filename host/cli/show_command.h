// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_SHOW_COMMAND_H
#define HOST_CLI_SHOW_COMMAND_H

#include "host/cli/console.h"
#include "host/cli/exit_code.h"
#include "host/cli/table_view.h"
#include "host/report/tables/row_formats.h"

#include <QString>

#include <optional>

struct show_options
{
    QString place;                   ///< absolute; a case's folder, or a result database
    std::optional<qint64> source;    ///< the number; none: every source
    QString table;                   ///< empty: every table
    std::optional<qint64> most_rows; ///< of each table; none: all of them
    row_layout layout = row_layout::automatic;
    std::optional<program_format> format; ///< for a program: the bytes that a report's file of the table has
};

/**
 * Prints the rows of a case's result databases. What stands between them and the whole of the evidence is reported as
 * warnings; partial where a source is incomplete. Throws host_error (not_found) when there are no rows to be had.
 */
exit_code run_show(const show_options &options, console &out);

#endif
