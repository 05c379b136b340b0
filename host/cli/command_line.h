// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_COMMAND_LINE_H
#define HOST_CLI_COMMAND_LINE_H

#include "host/cli/collect_command.h"
#include "host/cli/console.h"
#include "host/cli/extract_command.h"
#include "host/cli/report_command.h"
#include "host/cli/sample_command.h"
#include "host/cli/show_command.h"
#include "host/cli/verify_command.h"

#include <variant>

struct collect_options
{
    QString case_directory;
};

/** What the examiner asked for. */
struct command_line
{
    console_options output;
    std::variant<std::monostate, sample_options, extract_options, show_options, collect_options, check_request,
                 report_options>
        command; ///< monostate: only help
};

/** Reads the arguments of main(). Prints help itself. Throws host_error (usage) with the reason in plain words. */
command_line parse_command_line(int argc, char **argv);

#endif
