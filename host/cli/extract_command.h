// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_EXTRACT_COMMAND_H
#define HOST_CLI_EXTRACT_COMMAND_H

#include "host/cli/exit_code.h"
#include "host/cli/run_display.h"
#include "host/run/case_run.h"

/** What "extract" is asked for. */
struct extract_options
{
    case_request request;
    bool json_progress = false;
};

/** How many sources the run may have; one that is continued without naming them has those of the case. */
qsizetype source_count(const case_request &request);

/**
 * Extracts the sources into a case and prints what came of it. Nothing is touched before sources, case and plug-in are
 * known to be usable. Throws host_error when the run cannot begin.
 */
exit_code run_extract(const extract_options &options, console &out);

#endif
