// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_FILE_CONTENT_H
#define TESTS_SUPPORT_FILE_CONTENT_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Writes a file of a test, with the folders on the way; a failure ends the test program. */
void write_file(const QString &path, const QByteArray &content);

/** Whether file names are any bytes; Macs refuse those that are no UTF-8. */
#ifdef __APPLE__
inline constexpr bool names_are_bytes = false;
#else
inline constexpr bool names_are_bytes = true;
#endif

/** The same under a name of any bytes, below a folder. */
void write_file(const QString &folder, const QByteArray &name, const QByteArray &content);

/** The file's bytes, or "(unreadable)". */
QByteArray content_of(const QString &path);

/**
 * Everything below a folder as sorted relative paths; folders end with "/", links with "@" and are not followed. Bytes
 * of names that are no UTF-8 show as U+FFFD.
 */
QStringList tree_of(const QString &root);

#endif
