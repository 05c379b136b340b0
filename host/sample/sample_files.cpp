// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/sample/sample_parts.h"

#include <QFile>

using namespace Qt::StringLiterals;

void write_sample_file(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly) || file.write(content) != content.size() || !file.flush())
        throw host_error(error_kind::io, u"the file cannot be written: "_s + path + u": "_s + file.errorString());
}
