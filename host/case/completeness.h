// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_COMPLETENESS_H
#define HOST_CASE_COMPLETENESS_H

#include "host/case/case_layout.h"

/**
 * Whether the source's record, one of this program, says that its run did not come to its end: what stands there is
 * what the run left, and may be made anew. False where no record says anything.
 */
bool was_left_incomplete(const case_layout &layout, int number);

#endif
