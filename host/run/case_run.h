// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CASE_RUN_H
#define HOST_RUN_CASE_RUN_H

#include "host/case/manifest.h"
#include "host/run/case_request.h"
#include "host/run/run_observer.h"

/**
 * Extracts the sources into the case and reports to @p observer. Nothing is touched before sources, case and plug-in
 * are known to be usable; throws host_error when the run cannot begin. The case ends with its manifest, unless one
 * source alone was asked for.
 */
case_tally run_case(const case_request &request, run_observer &observer);

#endif
