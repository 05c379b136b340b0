// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FILE_HASH_H
#define HOST_FILES_FILE_HASH_H

#include <QString>

#include <optional>

/** SHA-256 of a regular file of a case, which is no link. Nothing when it cannot be read to its end. */
std::optional<QString> hash_of_file(const QString &path);

#endif
