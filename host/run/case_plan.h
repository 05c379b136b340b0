// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CASE_PLAN_H
#define HOST_RUN_CASE_PLAN_H

#include "host/run/case_request.h"
#include "host/run/earlier_case.h"
#include "host/run/source_run.h"

/** Which sources a case has, and which of them a run extracts. */
struct source_choice
{
    QList<named_source> all;    ///< numbered; those of earlier runs included
    QList<named_source> to_run; ///< in order
};

/**
 * Chooses by what is asked for and by what stands in the case, without a look at anything; @p listed are the sources
 * that the case itself lists. Throws host_error (refused) when the request does not fit the case, and what is wrong
 * with a record that is needed.
 */
source_choice choose_sources(const case_request &request, const QList<earlier_source> &earlier,
                             const QList<named_source> &listed = {});

/**
 * Throws host_error (refused) when something stands where the request neither removes nor continues it. What a run that
 * did not come to its end left may be made anew.
 */
void refuse_earlier_results(const case_request &request, const source_choice &choice,
                            const QList<earlier_source> &earlier);

/** A source that will be run, as it was found. */
struct planned_source
{
    source_request request;
    std::optional<host_error> problem; ///< why it cannot be read: it fails, and the others run
};

/** What a run of a case will do. */
struct case_plan
{
    QList<named_source> all; ///< the sources of the case, those of earlier runs included
    QList<planned_source> to_run;
    case_facts facts;
};

/**
 * Works out what is to be done, without touching anything: the only look for each source before its run. Throws
 * host_error: refused when the request does not fit what the case holds or a source, not_found when no source can be
 * read.
 */
case_plan plan_case(const case_request &request);

/** Throws host_error (refused) when the case is no longer what it was when @p plan was made. */
void check_plan(const case_request &request, const case_plan &plan);

#endif
