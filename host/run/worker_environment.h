// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_WORKER_ENVIRONMENT_H
#define HOST_RUN_WORKER_ENVIRONMENT_H

#include <QByteArray>
#include <QList>
#include <QString>

/**
 * The environment of a process that runs the plug-in: the same on a terminal, in a script and on a machine without a
 * display. It is built up from what is needed, so that no variable of the caller's makes a library load or write
 * anything, and has no folder for temporary files. "NAME=value" each.
 */
QList<QByteArray> worker_environment();

/** From here on temporary files of this process, the plug-in's and SQLite's too, are made in @p folder. */
void use_temporary_folder(const QString &folder);

#endif
