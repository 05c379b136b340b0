// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"

#include <memory>

namespace {

constexpr const char *examples = R"(Examples:
  bluetooth-logs sample sample
  bluetooth-logs sample sample --force
  bluetooth-logs sample hostile --hostile)";

} // namespace

void add_sample_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<sample_options>();
    CLI::App &sample = *app.add_subcommand("sample", "Write synthetic macOS, iOS and Windows sources to try things on");
    sample.footer(examples);
    add_path(sample, {"DIR", "PATH", "Folder for the sample; made if it is missing"}, options->directory)->required();
    sample.add_flag("--force", options->force, "Replace the files of an earlier sample in DIR");
    sample.add_flag_callback(
        "--hostile", [options] { options->names = sample_names::hostile; },
        "Add devices whose names many programs fail on: one of 1 MB, one with a NUL, one that is no UTF-8");
    sample.final_callback([options, &line] { line.command = *options; });
}
