// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_SAMPLE_COMMAND_H
#define HOST_CLI_SAMPLE_COMMAND_H

#include "host/cli/console.h"
#include "host/cli/exit_code.h"

#include <QString>

struct sample_options
{
    QString directory; ///< absolute
    bool force = false;
    bool is_hostile = false;     ///< with names that many programs fail on
    bool has_containers = false; ///< also sources as examiners hold them
};

/** Writes a synthetic source of each kind below a folder. Throws host_error, also when one is there already. */
exit_code run_sample(const sample_options &options, console &out);

#endif
