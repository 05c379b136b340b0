// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/free_room.h"

#include "host/files/host_error.h"

#include <QFile>

#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

void require_room(const QString &folder, qint64 bytes)
{
    struct statvfs system = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &system) != 0)
        return;
    const qint64 free = qint64(system.f_bavail) * qint64(system.f_frsize);
    if (bytes > free)
        throw host_error(error_kind::incomplete, u"there is no room in the case to copy the evidence: "_s
                                                     + QString::number(bytes) + u" bytes are needed and "_s
                                                     + QString::number(free) + u" are free"_s);
}
