// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_EVIDENCE_CHECK_H
#define HOST_CASE_EVIDENCE_CHECK_H

#include "host/case/check_outcome.h"
#include "host/case/check_request.h"
#include "host/case/source_record.h"

/**
 * Compares the evidence of a source with its record: files that were read in place by content, those of a container,
 * and of a folder that evidence was taken out of, as the request says. What it finds is added to the outcome.
 */
void check_evidence(const check_request &request, const source_record &recorded, check_outcome &outcome);

#endif
