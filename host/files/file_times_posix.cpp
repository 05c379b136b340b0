// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_times.h"

struct timespec modification_time(const struct stat &status)
{
    return status.st_mtim;
}

struct timespec change_time(const struct stat &status)
{
    return status.st_ctim;
}
