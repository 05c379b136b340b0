// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_SOURCE_HINT_H
#define HOST_SOURCE_SOURCE_HINT_H

#include <QString>

/** Whether one of the two databases stands where it belongs below @p root. */
bool holds_macos_databases(const QString &root);

/**
 * The root of a macOS file system when @p path, absolute, is a folder or a database inside it, or the folder in which
 * its data volume is mounted; empty where there is none.
 */
QString macos_root_around(const QString &path);

/** What to say to somebody who named @p path as a source: the argument that works, or how to make one; may be empty. */
QString source_hint(const QString &path);

#endif
