// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_EXTRACT_COMMAND_H
#define HOST_EXTRACT_COMMAND_H

#include "host/console.h"
#include "host/host_error.h"

#include <QString>
#include <QStringList>

/** What the examiner asked of one extraction. */
struct extract_options
{
    QString input;
    QString output;
    QString type = QStringLiteral("auto");
    QStringList tables = {QStringLiteral("devices"), QStringLiteral("paired_devices")};
    int engine_type = 0;
    int source_number = 1;
    QString display_name; ///< empty: the kind's own
    qint64 timezone_offset = 0;
    bool widen_ios_tables = false;
    QString log_file; ///< empty: none is kept
    bool verbose = false;
    QString plugin_file; ///< empty: the one beside the program
    bool force = false;
};

/**
 * Extracts one source into a case and tells what came of it. Nothing is touched before source, case and plug-in are
 * known to be usable. Throws host_error when the run cannot begin.
 */
exit_code run_extract(const extract_options &options, const console &out);

#endif
