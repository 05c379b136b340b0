// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_EXIT_CODE_H
#define HOST_CLI_EXIT_CODE_H

#include "host/case/outcome_code.h"
#include "host/files/host_error.h"

/** What the program reports to its caller; scripts rely on the numbers. */
enum class exit_code {
    done = 0,
    internal_error = 1,
    usage = 2,
    input = 3,            ///< missing, unreadable or free of evidence
    partial = 4,          ///< evidence was found, but a part could not be read or written
    evidence_changed = 5, ///< the evidence is not what it was before the run
    interrupted = 130,
};

/** The code of a command that an error ended. */
exit_code exit_code_of(error_kind kind);

/** The code of a command by what came of the case: the number that its record has. */
exit_code exit_code_of(outcome_code code);

#endif
