// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_PROCESS_PLATFORM_H
#define HOST_RUN_PROCESS_PLATFORM_H

#include <QString>

// A port provides these in a file of its own; CMake picks it.

/** A pipe whose ends no child inherits: reading, writing. False with errno set. */
bool open_pipe(int (&ends)[2]);

/** "SIGSEGV". */
QString name_of_signal(int signal);

#endif
