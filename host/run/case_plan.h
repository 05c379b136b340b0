// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CASE_PLAN_H
#define HOST_RUN_CASE_PLAN_H

#include "host/run/case_run.h"
#include "host/run/source_run.h"

/** What a run of a case will do. */
struct case_plan
{
    QList<named_source> all;    ///< the sources of the case, those of earlier runs included
    QList<named_source> to_run; ///< in order
    case_facts facts;
};

/**
 * Works out what is to be done, without touching anything. Throws host_error (refused) when the request does not fit
 * what the case holds, input when no source can be read.
 */
case_plan plan_case(const case_request &request);

/** The request of one source. Throws host_error (not_found) when the source cannot be read, usage when it must not be.
 */
source_request request_for(const case_request &request, const named_source &named);

/** Throws host_error (refused) when the places of the case and of a source of it would meet. */
void check_places(const source_request &request);

#endif
