// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_FILE_CONTENT_H
#define TESTS_SUPPORT_FILE_CONTENT_H

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Writes a file of a test, with the folders on the way; a failure ends the test program. */
void write_file(const QString &path, const QByteArray &content);

/** The file's bytes, or "(unreadable)". */
QByteArray content_of(const QString &path);

/** Everything below a folder as sorted relative paths; folders end with "/", links with "@" and are not followed. */
QStringList tree_of(const QString &root);

#endif
