// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_EVIDENCE_FOLDER_H
#define HOST_SOURCE_EVIDENCE_FOLDER_H

#include "host/files/descriptor.h"

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

/** The name of a file as text: stray bytes, which are no UTF-8, become "\xff". */
QString evidence_name_text(QByteArrayView name);

/**
 * Opens a file or folder of the evidence for reading: waits for nobody, and keeps the access time where it may. The
 * plug-in has a function of its own for that: what checks it shares no code with it.
 */
descriptor open_evidence(const QString &path, int more_flags = 0);

/**
 * The names in a folder, sorted, without "." and "..". A name that is no UTF-8 has its stray bytes as "\xff". Empty
 * where there is no folder or it may not be listed. Keeps the folder's access time where it may. Throws host_error
 * (incomplete) when the system fails to list it to its end.
 */
QStringList entry_names(const QString &folder);

/**
 * The first folder on the way to @p path, itself included, that this process may not search, or may not list where it
 * is
 * @p listed or below that. What is behind it must not be reported as absent.
 */
std::optional<QString> closed_folder(const QString &path, const QString &listed = {});

/** The name in a folder that is @p name in any letter case; empty if there is none. */
QString find_entry(const QString &folder, const QString &name);

/**
 * Whether reading @p path, which exists, changes its access time: the system keeps it for the owner and for root, and
 * on file systems that are mounted read-only or without access times.
 */
bool reading_changes_access_time(const QString &path);

#endif
