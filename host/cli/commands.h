// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_COMMANDS_H
#define HOST_CLI_COMMANDS_H

#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

/**
 * One function for each command of the program, in a file of its own: it adds the command with its arguments, and
 * puts into @p line what the examiner asked for when the command was given. @p line lives at least as long as @p app.
 */
void add_collect_command(CLI::App &app, command_line &line);
void add_extract_command(CLI::App &app, command_line &line);
void add_note_command(CLI::App &app, command_line &line);
void add_inspect_command(CLI::App &app, command_line &line);
void add_report_command(CLI::App &app, command_line &line);
void add_sample_command(CLI::App &app, command_line &line);
void add_show_command(CLI::App &app, command_line &line);
void add_verify_command(CLI::App &app, command_line &line);

#endif
