// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_FILE_NAMES_H
#define COMMON_FILE_NAMES_H

#include <QString>
#include <QStringList>

/** The names of everything in @p folder, trimmed, with "." and "..". None when there is no such folder. */
QStringList trimmed_names_in(const QString &folder);

/**
 * A name under which a copy of @p file, a name or a path, and its companions can be stored in @p folder without
 * overwriting: "x.db", "1_x.db", "2_x.db" and so on. A companion is named like the file with one of the suffixes
 * @p companions behind it. Creates the folder. Empty when the run is cancelled.
 */
QString free_file_name(const QString &file, const QString &folder, const QStringList &companions = {});

#endif
