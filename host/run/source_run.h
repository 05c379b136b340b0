// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_SOURCE_RUN_H
#define HOST_RUN_SOURCE_RUN_H

#include "host/run/run_observer.h"

#include <functional>

/** The facts of a case that every record of its sources repeats. */
struct case_facts
{
    QJsonObject
        members; ///< format, version, tool, options, settings, examiner, case number, number and hash of sources
};

/**
 * Runs the plug-in over one source, in a process of its own that is watched from here, and writes the source's record.
 * Once the plug-in is loaded, and before anything is written, @p prepare is called; what it throws ends the run. Throws
 * host_error (io) when the plug-in cannot be loaded or the worker cannot be started.
 */
source_record run_source(const source_request &request, const case_facts &facts, run_observer &observer,
                         const std::function<void()> &prepare);

/** Writes the record of a source. Throws host_error (io). */
void write_source_record(const source_request &request, const case_facts &facts, const source_record &record);

#endif
