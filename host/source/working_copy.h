// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_WORKING_COPY_H
#define HOST_SOURCE_WORKING_COPY_H

#include "host/files/descriptor.h"

#include <QByteArrayView>
#include <QString>

#include <sys/types.h>

/**
 * A working copy while it is written: readable by nobody who may not read the original, writable by its owner. Every
 * function throws host_error (io) with the system's reason.
 */
class working_copy
{
public:
    /** @p mode is that of the original. */
    working_copy(const QString &copy_path, mode_t mode);

    void add(QByteArrayView block);

    /** Ends the copy. The hash of what the disk holds now. */
    QString hash();

private:
    [[noreturn]] void fail() const;

    QString path;
    descriptor file;
};

#endif
