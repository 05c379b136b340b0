// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_CHECK_H
#define HOST_CASE_CASE_CHECK_H

#include "host/case/check_outcome.h"
#include "host/case/check_request.h"

/**
 * Hashes evidence, the files of a case and of its reports again and compares them with its manifest, by content. Reads
 * and never writes. Throws host_error: not_found when there is no such case, refused when the request names a source
 * that the manifest has not.
 */
check_outcome check_case(const check_request &request);

#endif
