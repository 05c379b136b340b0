// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_INSPECT_COMMAND_H
#define HOST_CLI_INSPECT_COMMAND_H

#include "host/cli/console.h"
#include "host/cli/exit_code.h"

#include <QStringList>

struct inspect_options
{
    QStringList paths; ///< absolute
    bool json = false;
    qint64 memory_limit = 2048; ///< MiB, of the process that looks into a container
    qint64 timeout = 0;         ///< seconds for one of them; 0: none
};

/** What survey_source() found, for readers. */
void print_survey(const QJsonObject &survey, console &out);

/** Prints what each path holds: container, volumes, kind, evidence. Writes nothing. */
exit_code run_inspect(const inspect_options &options, console &out);

#endif
