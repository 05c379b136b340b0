// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_KEPT_LINES_H
#define HOST_REPORT_READING_KEPT_LINES_H

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include <functional>

/** A line of a file in JSON Lines that the host has kept of a source. Valid while it is given. */
struct kept_line
{
    QByteArrayView text;                              ///< without its line end
    const QHash<QByteArrayView, QByteArrayView> &raw; ///< the members as they stand there
    QJsonObject json;

    /** A text of the object, in UTF-8; of bytes that are no UTF-8 the bytes. Empty for what is none. */
    QByteArray bytes(QLatin1StringView member) const;
    std::optional<qint64> number(QLatin1StringView member) const;
    /** A member as JSON; null where there is none or it is null. */
    QByteArray raw_value(QByteArrayView member) const;
};

/** The bytes of a text of JSON, or of {"base64": "…"}. */
QByteArray bytes_of_json(const QJsonValue &value);

/**
 * Gives the lines of a file of the case, none where there is no such file, and holds one at a time. Returns why not all
 * of them could be read, in plain words; empty if all could.
 */
QString for_each_kept_line(const QString &path, const std::function<void(const kept_line &line)> &take);

/** The same for any lines: false says that a line is none of such a file. */
QString for_each_text_line(const QString &path, const std::function<bool(QByteArrayView line)> &take);

#endif
