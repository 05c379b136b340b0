// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_SECCOMP_H
#define HOST_WORKER_SECCOMP_H

/**
 * From here on Linux refuses this process, all threads of it, the calls that reading evidence and writing a result
 * never need: they fail with EPERM, and those that are newer than this list with ENOSYS.
 * https://docs.kernel.org/userspace-api/seccomp_filter.html. The process must have no_new_privs. False where the kernel
 * or the processor's part of it has no such filters.
 */
bool refuse_needless_calls();

#endif
