// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/json_file.h"

#include "host/files/doubled_member.h"
#include "host/files/host_error.h"
#include "host/files/new_file.h"
#include "host/files/open_without_links.h"

#include <QFile>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 growth_bytes = qint64(1) << 20;

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
    QFile file;
    if (const QString problem = open_case_file(file, path); !problem.isEmpty())
        fail(problem);
    if (file.size() > most_bytes)
        fail(u"it has "_s + QString::number(file.size()) + u" bytes, more than this file ever has"_s);
    QByteArray content;
    do {
        content += file.read(growth_bytes); // one of the largest size would be reserved whole
        if (file.error() != QFile::NoError)
            fail(file.errorString());
        if (content.size() > most_bytes)
            fail(u"it grows while it is read"_s);
    } while (!file.atEnd());
    return content;
}

QJsonObject read_json_file(const QString &path)
{
    QJsonParseError error;
    const QByteArray text = read_whole_file(path, most_json_bytes);
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        throw host_error(error_kind::not_found, path + u" is no JSON file: "_s + error.errorString() + u" at byte "_s
                                                    + QString::number(error.offset));
    if (!document.isObject())
        throw host_error(error_kind::not_found, path + u" holds no JSON object"_s);
    if (const std::optional<QString> name = doubled_member(text))
        throw host_error(error_kind::not_found, path + u" gives the member \""_s + *name + u"\" twice"_s);
    return document.object();
}
