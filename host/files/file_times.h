// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FILE_TIMES_H
#define HOST_FILES_FILE_TIMES_H

#include <ctime>

#include <sys/stat.h>

// A port provides these in a file of its own; CMake picks it.

/** When the content was last written. */
struct timespec modification_time(const struct stat &status);

/** When the file's entry was last changed: permissions, owner, links, times or content. */
struct timespec change_time(const struct stat &status);

#endif
