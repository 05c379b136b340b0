// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FILE_LOCK_H
#define HOST_FILES_FILE_LOCK_H

#include "host/files/descriptor.h"

#include <QString>

#include <optional>

/**
 * Holds flock(2) on a file, which names its holder, until this object goes. The system gives the lock back when the
 * process ends, however it ends. The file itself stays: removing it would let two processes lock two files of one name.
 */
class file_lock
{
public:
    /** Throws host_error: refused, naming the holder, when somebody else holds it; else io. */
    explicit file_lock(const QString &path);

    /** Whether somebody holds the lock of this file, as far as can be seen. False where there is no such file. */
    static bool is_held(const QString &path);

private:
    descriptor file;
};

#endif
