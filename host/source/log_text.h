// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_LOG_TEXT_H
#define HOST_SOURCE_LOG_TEXT_H

#include <QByteArrayView>
#include <QString>

#include <optional>

/** Why a file that begins with these bytes is no log text, and what to do about it: "it is a gzip archive: unpack it".
 */
std::optional<QString> why_no_log_text(QByteArrayView start);

/**
 * Whether the line could stand in a device's log: it begins with a time as such logs write it, or it holds one of the
 * phrases that the plug-in looks for. docs/formats.md.
 */
bool is_device_log_line(QByteArrayView line);

/**
 * Why the regular file at @p path is no log text of a device, with what to do about it. It is read up to its first line
 * that could be of one. Nothing when there is such a line.
 */
std::optional<QString> why_no_device_log(const QString &path);

#endif
