// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/open_without_links.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>
#include <unistd.h>

int open_in_one_step(const char *path, int flags, mode_t mode)
{
    open_how how = {}; // https://man7.org/linux/man-pages/man2/openat2.2.html
    how.flags = static_cast<decltype(how.flags)>(flags);
    how.mode = (flags & O_CREAT) != 0 ? mode : 0;
    how.resolve = RESOLVE_NO_SYMLINKS;
    return int(::syscall(SYS_openat2, AT_FDCWD, path, &how, sizeof how));
}
