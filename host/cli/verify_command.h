// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_VERIFY_COMMAND_H
#define HOST_CLI_VERIFY_COMMAND_H

#include "host/case/case_check.h"
#include "host/cli/console.h"
#include "host/cli/exit_code.h"

struct verify_options
{
    check_request request;
    QString record_file; ///< absolute; empty: none is written
    bool json = false;   ///< the outcome as JSON on standard output, in place of words
};

/** What the code of the outcome means and what was compared, in one line. */
QString verdict(const check_outcome &outcome);

/** The outcome as --json and --record have it; @p time: UTC, of the comparison. */
QJsonObject verification_record(const check_request &request, const check_outcome &outcome, const QString &time);

/** Compares a case with its manifest and reports what is different. Throws host_error. */
exit_code run_verify(const verify_options &options, console &out);

#endif
