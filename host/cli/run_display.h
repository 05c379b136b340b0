// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_RUN_DISPLAY_H
#define HOST_CLI_RUN_DISPLAY_H

#include "host/cli/console.h"
#include "host/run/run_observer.h"

#include <memory>

/** How the examiner wants to see a run. */
struct display_options
{
    qsizetype source_count = 1;
    bool is_json = false; ///< JSON Lines on standard error, in place of a progress line
};

/**
 * What shows a run: of one source its result in full; of several a line for each that has ended, and on a terminal how
 * far all are; or one JSON object a line for programs (docs/progress.md).
 */
std::unique_ptr<run_observer> make_display(const display_options &options, console &out);

#endif
