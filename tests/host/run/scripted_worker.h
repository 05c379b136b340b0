// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_RUN_SCRIPTED_WORKER_H
#define TESTS_HOST_RUN_SCRIPTED_WORKER_H

#include <QByteArray>

/**
 * A worker that does what a script for the shell says: the program of these tests is its own worker, and whoever starts
 * one in a test starts this. The script is the order's plug-in file or, without one, the source's path with ".worker"
 * behind; its first argument is the task. This gives the commands of a script that say a worker's line.
 */
QByteArray saying(QByteArrayView line);

#endif
