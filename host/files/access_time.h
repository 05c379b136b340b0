// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_ACCESS_TIME_H
#define HOST_FILES_ACCESS_TIME_H

struct statvfs;

// A port provides these in a file of its own; CMake picks it.

/** The flag of open() that leaves the access time alone; 0 where there is none: evidence is mounted read-only there. */
int keep_access_time();

/** Whether the file system is mounted without access times. */
bool has_no_access_times(const struct statvfs &system);

#endif
