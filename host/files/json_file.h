// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_JSON_FILE_H
#define HOST_FILES_JSON_FILE_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/**
 * Puts @p content at @p path: whole or not at all, on the disk when this returns, in place of an earlier file of that
 * name. Throws host_error (io) and leaves an earlier file as it was.
 */
void write_whole_file(const QString &path, const QByteArray &content);

/** The same for JSON, indented, with a line end at the end. */
void write_json_file(const QString &path, const QJsonObject &content);

inline constexpr qint64 most_json_bytes = qint64(1) << 30; ///< of a file of this program

/** The bytes of a regular file of at most @p most_bytes, which is no link. Throws host_error (not_found). */
QByteArray read_whole_file(const QString &path, qint64 most_bytes);

/**
 * The JSON object in a file of this program. Throws host_error (not_found), naming the file and the place of an error,
 * or the member that an object has twice.
 */
QJsonObject read_json_file(const QString &path);

#endif
