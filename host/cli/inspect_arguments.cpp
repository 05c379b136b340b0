// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/inspect_command.h"
#include "host/files/paths.h"

#include <memory>

std::shared_ptr<const inspect_options> add_inspect_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<inspect_options>();
    CLI::App &inspect = *app.add_subcommand("inspect", "Tell what sources are and which evidence they hold");
    const argument paths{"PATH",
                         "PATH",
                         "A folder, a log text, an image, an archive or a backup; several may be given",
                         {"bluetooth-logs inspect disk.E01", "its volumes, and where evidence is"}};
    add_values(inspect, paths,
               [options, paths](const QStringList &given) {
                   for (const QString &path : given)
                       options->paths.append(absolute_path(path, paths.name()));
               })
        ->required()
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args(true);
    add_flag(inspect, {"--json", "", "Print JSON", {"bluetooth-logs inspect --json a.tar.gz b.dd", "for a program"}},
             options->json);
    add_process_limits(inspect, "a container", options->memory_limit, options->timeout);
    inspect.final_callback(
        [options, &line] { line.command = [options](console &out) { return run_inspect(*options, out); }; });
    return options;
}
