// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_COLLECT_COMMAND_H
#define HOST_CLI_COLLECT_COMMAND_H

#include "host/case/manifest.h"
#include "host/cli/console.h"
#include "host/cli/exit_code.h"

/** Makes the manifest of the case at @p directory from the records of its sources. Throws host_error. */
exit_code run_collect(const QString &directory, console &out);

/** How the sources of a case ended, where there are several, and the hash of its manifest. */
void print_tally(const case_tally &tally, bool has_several_sources, console &out);

#endif
