// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_SHOW_COMMAND_H
#define HOST_CLI_SHOW_COMMAND_H

#include "host/cli/console.h"
#include "host/files/host_error.h"

#include <QString>

struct show_options
{
    QString case_directory;
    QString table; ///< empty: every table
};

/** Prints the rows of a case's result database. Throws host_error when there are none to be had. */
exit_code run_show(const show_options &options, const console &out);

#endif
