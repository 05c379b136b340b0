// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_READING_PROCESS_H
#define HOST_WORKER_READING_PROCESS_H

#include "host/run/reading_limits.h"

#include <functional>

/**
 * Runs @p read in a child process that has this one's streams, takes no more memory and time than @p limits, reads
 * everything and, if they say so, writes below their folders alone, as confine_process() holds it there. Returns in
 * both processes: in the child with what @p read returns or throws, which the caller makes its own end, and in this one
 * with the exit code that the child ended with. Throws host_error: incomplete where a limit or a crash ended the child,
 * interrupted where a signal did. There must be no other thread.
 */
int run_in_reading_process(const reading_limits &limits, const std::function<int()> &read);

/** Whether this process is that child. Its end runs nothing more: what libraries do there it may not do. */
bool is_reading_process();

#endif
