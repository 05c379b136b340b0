// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/finished_file.h"

#include "host/files/descriptor.h"
#include "host/files/host_error.h"
#include "host/files/system_error.h"

#include <QFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

void put_in_place(const QString &finished, const QString &path)
{
    const QByteArray name = QFile::encodeName(finished);
    const descriptor file(::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file.is_open() || ::fsync(file.number()) != 0
        || ::rename(name.constData(), QFile::encodeName(path).constData()) != 0)
        throw host_error(error_kind::io, path + u" cannot be written: "_s + system_error_text(errno));
}
