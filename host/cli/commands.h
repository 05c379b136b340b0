// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_COMMANDS_H
#define HOST_CLI_COMMANDS_H

#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include <memory>

struct extract_options;
struct inspect_options;
struct note_options;
struct report_options;
struct sample_options;
struct show_options;
struct verify_options;

/**
 * One function for each command of the program, in a file of its own: it adds the command with its arguments, and
 * puts into @p line what the examiner asked for when the command was given. @p line lives at least as long as @p app.
 * What is given back is known once the command line is read.
 */
std::shared_ptr<const QString> add_collect_command(CLI::App &app, command_line &line);
std::shared_ptr<const extract_options> add_extract_command(CLI::App &app, command_line &line);
std::shared_ptr<const note_options> add_note_command(CLI::App &app, command_line &line);
std::shared_ptr<const inspect_options> add_inspect_command(CLI::App &app, command_line &line);
std::shared_ptr<const report_options> add_report_command(CLI::App &app, command_line &line);
std::shared_ptr<const sample_options> add_sample_command(CLI::App &app, command_line &line);
std::shared_ptr<const show_options> add_show_command(CLI::App &app, command_line &line);
std::shared_ptr<const verify_options> add_verify_command(CLI::App &app, command_line &line);

#endif
