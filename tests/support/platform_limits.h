// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PLATFORM_LIMITS_H
#define TESTS_SUPPORT_PLATFORM_LIMITS_H

/** Why this platform's own parser cannot pass the current row or test; null, as for nearly all, when it can. */
const char *platform_limit();

/** Leaves the current row or test out where the platform, not the code under test, cannot pass it. */
#define SKIP_AT_PLATFORM_LIMIT() \
    if (const char *limit = platform_limit()) \
    QSKIP(limit)

#endif
