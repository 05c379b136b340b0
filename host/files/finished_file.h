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

/**
 * Gives a file that is on the disk its name, in the same folder, in place of an earlier one; the name is on the disk
 * when this returns. Gives 0 or the system's error number.
 */
int give_name(const QString &finished, const QString &path);

#endif
