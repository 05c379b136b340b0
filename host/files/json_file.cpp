// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/json_file.h"

#include "host/files/descriptor.h"
#include "host/files/host_error.h"
#include "host/files/new_file.h"
#include "host/files/system_error.h"

#include <QFile>
#include <QJsonDocument>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 most_json_bytes = qint64(1) << 30;

} // namespace

void write_whole_file(const QString &path, const QByteArray &content)
{
    new_file file(path);
    file.add(content);
    file.commit();
}

void write_json_file(const QString &path, const QJsonObject &content)
{
    write_whole_file(path, QJsonDocument(content).toJson());
}

QByteArray read_whole_file(const QString &path, qint64 most_bytes)
{
    const auto fail = [&path](const QString &reason) {
        throw host_error(error_kind::not_found, path + u" cannot be read: "_s + reason);
    };
    const descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!file.is_open() || ::fstat(file.number(), &status) != 0)
        fail(system_error_text(errno));
    if (!S_ISREG(status.st_mode))
        fail(u"it is not a regular file"_s);
    if (status.st_size > most_bytes)
        fail(u"it has "_s + QString::number(qint64(status.st_size)) + u" bytes, more than this file ever has"_s);
    QFile reader;
    if (!reader.open(file.number(), QIODevice::ReadOnly))
        fail(reader.errorString());
    QByteArray content = reader.read(most_bytes + 1);
    if (reader.error() != QFile::NoError)
        fail(reader.errorString());
    return content;
}

QJsonObject read_json_file(const QString &path)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(read_whole_file(path, most_json_bytes), &error);
    if (error.error != QJsonParseError::NoError)
        throw host_error(error_kind::not_found, path + u" is no JSON file: "_s + error.errorString() + u" at byte "_s
                                                    + QString::number(error.offset));
    if (!document.isObject())
        throw host_error(error_kind::not_found, path + u" holds no JSON object"_s);
    return document.object();
}
