// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_WORKER_ENVIRONMENT_H
#define HOST_RUN_WORKER_ENVIRONMENT_H

#include <QByteArray>
#include <QList>
#include <QString>

/**
 * The environment of a process that runs the plug-in: the same on a terminal, in a script and on a machine without a
 * display, whatever Qt is told elsewhere, and with every temporary file in @p folder. "NAME=value" each.
 */
QList<QByteArray> worker_environment(const QString &folder);

#endif
