// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_COMMAND_LINE_H
#define HOST_CLI_COMMAND_LINE_H

#include "host/cli/console.h"
#include "host/cli/exit_code.h"
#include "host/files/host_error.h"
#include "host/run/reading_limits.h"

#include <QStringList>

#include <functional>
#include <optional>

/** What the examiner asked for. */
struct command_line
{
    QStringList arguments; ///< as they were typed
    console_options output;
    std::function<exit_code(console &out)> command; ///< does it; may throw host_error
    std::optional<reading_limits> reading;          ///< of a command that reads a case in a process of its own
    std::optional<host_error> problem;              ///< what is wrong with it; there is no command then
};

/** Reads the arguments of main(). */
command_line parse_command_line(int argc, char **argv);

#endif
