// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_WORKER_H
#define HOST_WORKER_WORKER_H

#include <QLatin1StringView>

/** The argument that makes the program the process that runs the plug-in. It is for the program itself alone. */
inline constexpr QLatin1StringView worker_argument("worker");

/** How the process ends, for who watches it; what its events say counts more. */
enum class worker_end { done = 0, failed = 1, without_memory = 4, interrupted = 130 };

/**
 * The process that runs the plug-in over one source: reads its order from standard input, reports on standard output,
 * and ends when standard input ends; host/run/worker_protocol.h has the lines. Gives the process's exit code.
 */
int run_worker();

#endif
