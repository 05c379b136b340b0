// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_WINDOWS_HIVE_H
#define HOST_SOURCE_WINDOWS_HIVE_H

#include <QString>
#include <QStringList>

/**
 * Where Windows keeps the registry hive SYSTEM below @p root, and the transaction logs that lie beside it: relative
 * paths as the folders spell them, since letter case says nothing there. The hive comes first, present or not.
 */
QStringList windows_hive_paths(const QString &root);

/** Whether a path relative to a source is that of the hive, in any letter case. */
bool is_windows_hive(const QString &path);

/** Whether it is that of a transaction log of the hive. */
bool is_windows_hive_log(const QString &path);

#endif
