// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/extract_command.h"

#include "host/cli/collect_command.h"

#include <csignal>

exit_code run_extract(const extract_options &options, console &out)
{
    std::signal(SIGPIPE, SIG_IGN); // of a worker that is gone
    const case_request &request = options.request;
    const qsizetype sources = request.only ? 1 : request.sources.size();
    const std::unique_ptr<run_observer> display =
        make_display({.source_count = sources, .jobs = request.jobs, .is_json = options.json_progress}, out);
    const case_tally tally = run_case(request, *display);
    out.progress().clear();
    if (!request.only)
        print_tally(tally, sources > 1, out);
    return exit_code_of(tally.code());
}
