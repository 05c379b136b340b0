// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_READING_LIMITS_H
#define HOST_RUN_READING_LIMITS_H

#include <QString>
#include <QStringList>

/** Within what a command reads a case, which a stranger may have written. */
struct reading_limits
{
    qint64 memory = 2048; ///< MiB of address space
    qint64 timeout = 0;   ///< seconds; 0: none
    QStringList writable; ///< absolute paths of folders; one that is not there may be made
};

#endif
