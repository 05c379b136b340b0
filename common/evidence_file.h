// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_EVIDENCE_FILE_H
#define COMMON_EVIDENCE_FILE_H

#include <QFile>
#include <QString>

/**
 * Evidence is written by the other side: these functions touch it without changing it, without being held up by it and
 * without being led into writing to it.
 */

/**
 * Opens the regular file that @p file names, read-only and without changing its access time where the system allows
 * it. Anything else (a directory, a FIFO, a device) fails, and never blocks. Returns the error's text, as
 * QFile::open() would word it, null when the file is open; @p file has no name then, as Qt keeps none for a descriptor.
 */
QString open_evidence_file(QFile &file);

/**
 * Copies the regular file @p source to @p target, byte by byte. Never overwrites and never follows a link at the
 * target. False when no whole copy could be made; then nothing new stands at the target.
 */
bool copy_evidence_file(const QString &source, const QString &target);

/**
 * Whether a link on the way leads @p path, which need not exist, to a place at or below @p root. False for a path that
 * is written below the root in plain sight, and for an empty root.
 */
bool is_linked_below(const QString &path, const QString &root);

/** Whether both paths name one existing file, be it by a symbolic or a hard link. */
bool is_same_file(const QString &first, const QString &second);

#endif
