// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/kept_access_times.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>

#include <fcntl.h>

namespace {

std::atomic<int> living = 0;

} // namespace

kept_access_times::kept_access_times()
{
    ++living;
}

kept_access_times::~kept_access_times()
{
    --living;
}

/**
 * The program's open() stands before that of the C library for every library that the program loads, and does the same
 * but for one flag. Only the owner of a file and root may set it.
 */
extern "C" __attribute__((visibility("default"))) int open(const char *path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (living > 0 && (flags & O_ACCMODE) == O_RDONLY) {
        const int file = ::openat(AT_FDCWD, path, flags | O_NOATIME, mode);
        if (file != -1 || errno != EPERM)
            return file;
    }
    return ::openat(AT_FDCWD, path, flags, mode);
}
