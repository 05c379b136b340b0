// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_REPORT_COMMAND_H
#define HOST_CLI_REPORT_COMMAND_H

#include "host/cli/console.h"
#include "host/cli/exit_code.h"
#include "host/report/report_files.h"

/** Writes reports of a case. The code is partial when the case, or what was read of it, is not complete. */
exit_code run_report(const report_options &options, console &out);

#endif
