// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/kept_lines.h"

#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/text/raw_json.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

QByteArray bytes_of_json(const QJsonValue &value)
{
    return value.isObject() ? QByteArray::fromBase64(value.toObject().value("base64"_L1).toString().toLatin1())
                            : value.toString().toUtf8();
}

QByteArray kept_line::bytes(QLatin1StringView member) const
{
    return bytes_of_json(json.value(member));
}

std::optional<qint64> kept_line::number(QLatin1StringView member) const
{
    const QJsonValue value = json.value(member);
    return value.isDouble() ? std::optional(value.toInteger()) : std::nullopt;
}

QByteArray kept_line::raw_value(QByteArrayView member) const
{
    const QByteArrayView value = raw.value(member);
    return value == "null" ? QByteArray() : value.toByteArray();
}

QString for_each_text_line(const QString &path, const std::function<bool(QByteArrayView line)> &take)
{
    if (!path_exists(path))
        return {};
    const QFileInfo info(path);
    QFile file;
    QString problem = open_case_file(file, path);
    if (!problem.isEmpty())
        return info.fileName() + u" cannot be read: "_s + problem;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (!take(QByteArrayView(line).trimmed()))
            problem = info.fileName() + u" is damaged"_s;
    }
    if (file.error() != QFileDevice::NoError)
        problem = info.fileName() + u" cannot be read to its end: "_s + file.errorString();
    else if (file.pos() < file.size())
        problem = info.fileName() + u" ended before its end"_s;
    return problem;
}

QString for_each_kept_line(const QString &path, const std::function<void(const kept_line &line)> &take)
{
    return for_each_text_line(path, [&take](QByteArrayView text) {
        const auto members = raw_json_members(text);
        if (members)
            take({text, *members, QJsonDocument::fromJson(text.toByteArray()).object()});
        return members.has_value();
    });
}
