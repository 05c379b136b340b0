// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FILE_HASH_H
#define HOST_FILES_FILE_HASH_H

#include <QString>

#include <optional>

/** What was read of a file. */
struct file_content
{
    qint64 size = 0; ///< bytes read
    QString sha256;
};

/** Reads a regular file of a case, which is no link, to its end. Nothing when that cannot be done. */
std::optional<file_content> content_of_file(const QString &path);

/** The SHA-256 of the same. */
std::optional<QString> hash_of_file(const QString &path);

#endif
