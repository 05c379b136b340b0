// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FILE_REMOVAL_H
#define HOST_FILES_FILE_REMOVAL_H

#include <QString>
#include <QStringList>

/**
 * Removes files below @p root that the program wrote, by their names relative to it and in this order, and then the
 * folders that held them, where they are empty. Nothing is removed through a link, and no folder with something in it.
 * Gives the paths of what stays in those folders. Throws host_error (io) when a file cannot be removed.
 */
QStringList remove_listed_files(const QString &root, const QStringList &files);

/** The folders between @p root and the files, relative to it, the outermost first. */
QStringList folders_of(const QStringList &files);

#endif
