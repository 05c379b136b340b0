// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_SOURCE_OUTCOME_H
#define HOST_RUN_SOURCE_OUTCOME_H

#include "host/case/source_record.h"
#include "host/run/source_request.h"
#include "host/run/worker_protocol.h"

/**
 * Judges a run by all that is known of it: gives @p record, what was known before the run, with status, exit code,
 * messages and all that the worker reported. It is done only if all that was there was read, all that was read was
 * stored, and nothing was touched; everything else is reported.
 */
source_record judge_source(const source_request &request, const source_record &record, const worker_report &report,
                           bool is_interrupted);

#endif
