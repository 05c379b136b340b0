// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_COMMAND_LINE_H
#define HOST_CLI_COMMAND_LINE_H

#include "host/cli/collect_command.h"
#include "host/cli/console.h"
#include "host/cli/extract_command.h"
#include "host/cli/help_text.h"
#include "host/cli/report_command.h"
#include "host/cli/sample_command.h"
#include "host/cli/show_command.h"
#include "host/cli/verify_command.h"

#include <variant>

struct collect_options
{
    QString directory; ///< absolute
};

/** What the examiner asked for, or what is wrong with it: a host_error (refused), for the console to tell. */
struct command_line
{
    QStringList arguments; ///< as they were typed
    console_options output;
    std::variant<help_text, host_error, sample_options, extract_options, collect_options, check_request, report_options,
                 show_options>
        command;
};

/** Reads the arguments of main(). */
command_line parse_command_line(int argc, char **argv);

#endif
