// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/access_time.h"

#include <fcntl.h>
#include <sys/statvfs.h>

int keep_access_time()
{
    return O_NOATIME;
}

bool has_no_access_times(const struct statvfs &system)
{
    return (system.f_flag & ST_NOATIME) != 0;
}
