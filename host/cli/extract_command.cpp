// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/extract_command.h"

#include "host/cli/collect_command.h"
#include "host/files/paths.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

bool makes_reports_old(const case_request &request)
{
    return request.earlier == case_request::earlier_run::removed
           || request.earlier == case_request::earlier_run::added_to;
}

} // namespace

qsizetype source_count(const case_request &request)
{
    if (request.only)
        return 1;
    return request.sources.isEmpty() ? case_layout(request.directory).source_numbers().size() : request.sources.size();
}

exit_code run_extract(const extract_options &options, console &out)
{
    std::signal(SIGPIPE, SIG_IGN); // of a worker that is gone
    const case_request &request = options.request;
    const qsizetype sources = source_count(request);
    const std::unique_ptr<run_observer> display = make_display({.source_count = sources,
                                                                .is_json = options.json_progress},
                                                               out);
    const case_tally tally = run_case(request, *display);
    out.progress().clear();
    if (makes_reports_old(request) && path_exists(request.directory + u"/Report"_s))
        out.note(u"a report of the case as it was before is in "_s + request.directory
                 + u"/Report: \"report --force\" makes it anew"_s);
    if (!request.only)
        print_tally(tally, sources > 1, out);
    return exit_code_of(tally.code());
}
