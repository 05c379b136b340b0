// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FINISHED_FILE_H
#define HOST_FILES_FINISHED_FILE_H

#include <QString>

/**
 * Puts a file that a library has written on the disk and gives it its name, in place of an earlier file of that name.
 * Throws host_error (io).
 */
void put_in_place(const QString &finished, const QString &path);

#endif
