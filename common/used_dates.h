// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_USED_DATES_H
#define COMMON_USED_DATES_H

#include "common/platform/spotlight.h"
#include "common/shared_records.h"

/**
 * Reads the dates out of what Spotlight prints of them. Texts that are no dates are left out. Ends early, with the
 * dates read so far, when the run is cancelled.
 */
struct_GLOBAL_ARTIFACT_used_dates parse_used_dates(const spotlight_descriptions &descriptions);

#endif
