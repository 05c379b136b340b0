// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_BACKUP_STORE_H
#define HOST_CONTAINER_BACKUP_STORE_H

#include "host/container/source_container.h"

/** Whether the folder is a backup of an iOS device: it has a Manifest.db and a Manifest.plist. docs/formats.md. */
bool is_backup_folder(const QString &folder);

/**
 * The backup in the folder or archive at @p path; its two manifests are read as copies in memory. @p member: of an
 * archive, the folder of the one that is meant; empty: the only one. Throws host_error: not_found when it is encrypted
 * or damaged, or is none, refused when there are several or not the one that is meant.
 */
std::unique_ptr<source_container> open_backup(const QString &path, const QString &member,
                                              const container_observers &observers);

#endif
