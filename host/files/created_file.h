// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_CREATED_FILE_H
#define HOST_FILES_CREATED_FILE_H

#include "host/files/descriptor.h"

#include <QString>

#include <sys/types.h>

/**
 * A new file, open for writing, that has just the permissions @p mode, whatever the process's mask: a process that is
 * confined may change none later. No link is followed. No other thread may make files meanwhile. Closed, with errno
 * set, where something stands at @p path already or the file cannot be made.
 */
descriptor create_file(const QString &path, mode_t mode);

#endif
