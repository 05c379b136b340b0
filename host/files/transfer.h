// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_TRANSFER_H
#define HOST_FILES_TRANSFER_H

#include <QByteArrayView>

#include <functional>

// Reading and writing open files, whatever signal comes between. What fails leaves the system's reason in errno.

/** Reads at most @p most bytes: how many there were, 0 at the end, -1 on failure. */
qsizetype read_some(int file, char *bytes, qsizetype most);

/** Reads to the end and gives every block to @p take. False when the file cannot be read. */
bool read_blocks(int file, const std::function<void(QByteArrayView block)> &take);

/** Writes all of it, or gives false. */
bool write_all(int file, QByteArrayView bytes);

#endif
