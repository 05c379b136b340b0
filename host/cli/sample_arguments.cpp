// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/sample_command.h"

#include <memory>

std::shared_ptr<const sample_options> add_sample_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<sample_options>();
    CLI::App &sample = *app.add_subcommand("sample", "Write synthetic macOS, iOS and Windows sources to try things on");
    add_place(sample, {"DIR", "PATH", "Folder for the sample; made if it is missing", {"bluetooth-logs sample sample"}},
              options->directory)
        ->required();
    add_flag(sample,
             {"--force", "", "Replace the files of an earlier sample in DIR", {"bluetooth-logs sample sample --force"}},
             options->force);
    add_flag(sample,
             {"--hostile",
              "",
              "Add devices whose names many programs fail on: one of 1 MB, one with a NUL, one that is no UTF-8",
              {"bluetooth-logs sample hostile --hostile"}},
             options->is_hostile);
    add_flag(sample,
             {"--image",
              "",
              "Add sample.tar.gz, a backup and a file system of an iOS device",
              {"bluetooth-logs sample sample --image"}},
             options->has_containers);
    sample.final_callback(
        [options, &line] { line.command = [options](console &out) { return run_sample(*options, out); }; });
    return options;
}
