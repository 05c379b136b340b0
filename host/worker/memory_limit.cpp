// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/memory_limit.h"

#include <sys/resource.h>

namespace {

constexpr bool is_sanitized = BLUETOOTH_LOGS_SANITIZED; // sanitizers reserve terabytes of addresses

} // namespace

bool limit_memory(qint64 mebibytes)
{
    const rlimit no_core{0, 0};
    ::setrlimit(RLIMIT_CORE, &no_core);
    if (is_sanitized)
        return false;
    rlimit present = {};
    const rlim_t bytes = rlim_t(mebibytes) << 20;
    if (::getrlimit(RLIMIT_AS, &present) != 0 || present.rlim_cur < bytes)
        return false;
    const rlimit limit{bytes, bytes};
    return ::setrlimit(RLIMIT_AS, &limit) == 0;
}
