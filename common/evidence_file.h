// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_EVIDENCE_FILE_H
#define COMMON_EVIDENCE_FILE_H

#include <QFile>
#include <QString>

#include <filesystem>
#include <optional>

// An adversary may have made the evidence. These functions read it without changing it, never wait for it, and are not
// led by it into writing to the source.

/**
 * Opens the regular file that @p file names, read-only and without changing its access time where the system allows
 * it. Returns nothing when the file is open; @p file has no name then, as Qt keeps none for a descriptor. Anything but
 * a regular file (a directory, a FIFO, a device) fails at once. A failure returns the text with which QFile::open()
 * would explain it.
 */
std::optional<QString> open_evidence_file(QFile &file);
/** The same for a file by its path. */
std::optional<QString> open_evidence_file(QFile &file, const std::filesystem::path &path);

/**
 * Copies the regular file @p source to @p target, byte by byte. Only the copy's owner can read and write it. Never
 * overwrites and never follows a link at the target. False when no whole copy could be made; then nothing new stands
 * at the target.
 */
bool copy_evidence_file(const QString &source, const QString &target);

/**
 * Whether a result may be written at @p path, which need not exist. It may not where a link on the way leads it to a
 * place at or below @p source_root. A path that lies there in plain sight, before any link on its way, is the host's
 * own choice; with an empty root every path is safe.
 */
bool is_safe_target(const std::filesystem::path &path, const std::filesystem::path &source_root);
bool is_safe_target(const QString &path, const QString &source_root);

/** Whether both paths name one existing file, by the same name, a symbolic link or a hard link. */
bool is_same_file(const std::filesystem::path &first, const std::filesystem::path &second);
bool is_same_file(const QString &first, const QString &second);

#endif
