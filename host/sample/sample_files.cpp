// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/descriptor.h"
#include "host/files/host_error.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"
#include "host/sample/sample_parts.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>

using namespace Qt::StringLiterals;

void write_sample_file(const QString &path, const QByteArray &content)
{
    const descriptor file(
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file.is_open() || !write_all(file.number(), content))
        throw host_error(error_kind::io, u"the file cannot be written: "_s + path + u": "_s + system_error_text(errno));
}
