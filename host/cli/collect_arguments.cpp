// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"

#include <memory>

namespace {

constexpr const char *examples = R"(Examples:
  bluetooth-logs extract --sources list.json -o case --only 1       on one machine
  bluetooth-logs extract --sources list.json -o case --only 2       on another one
  bluetooth-logs collect case                                       once all have ended)";

} // namespace

void add_collect_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<collect_options>();
    CLI::App &collect = *app.add_subcommand("collect", "Make the manifest of a case from the records of its sources");
    collect.footer(examples);
    add_path(collect, {"CASE", "PATH", "The case's folder"}, options->directory)->required();
    collect.final_callback([options, &line] { line.command = *options; });
}
