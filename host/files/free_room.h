// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FREE_ROOM_H
#define HOST_FILES_FREE_ROOM_H

#include <QString>

/**
 * Throws host_error (incomplete) when the file system of the case's @p folder has no room for so many bytes of
 * evidence. Says nothing where the system does not.
 */
void require_room(const QString &folder, qint64 bytes);

#endif
