// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/collect_command.h"
#include "host/cli/commands.h"
#include "host/cli/reading_arguments.h"

#include <memory>

namespace {

constexpr example examples[] = {
    {"bluetooth-logs extract --sources list.json -o case --only 1", "on one machine"},
    {"bluetooth-logs extract --sources list.json -o case --only 2", "on another one"},
    {"bluetooth-logs collect case", "once all have ended"},
};

} // namespace

std::shared_ptr<const QString> add_collect_command(CLI::App &app, command_line &line)
{
    const auto directory = std::make_shared<QString>();
    CLI::App &collect = *app.add_subcommand("collect", "Make the manifest of a case from the records of its sources");
    for (const example &shown : examples)
        add_example(collect, shown);
    add_place(collect, {"CASE", "PATH", "The case's folder"}, *directory)->required();
    const auto limits = add_reading_limits(collect, long_reading);
    collect.final_callback([directory, limits, &line] {
        limits->writable = {*directory};
        line.reading = *limits;
        line.command = [directory](console &out) { return run_collect(*directory, out); };
    });
    return directory;
}
