// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_RUN_SCRIPTED_WORKER_H
#define TESTS_HOST_RUN_SCRIPTED_WORKER_H

#include "host/run/worker_protocol.h"

#include <QByteArray>

/**
 * A worker that does what a script for the shell says: the program of these tests is its own worker, and whoever starts
 * one in a test starts this. The script is the order's plug-in file or, without one, the source's path with ".worker"
 * behind; its arguments are the task, the number of the source and the order. This gives the commands of a script that
 * say a worker's line.
 */
QByteArray saying(QByteArrayView line);

/** The parts of a script that does what a worker does where all is well, as it is told: one table of three rows. */
namespace worker_script {

inline const QByteArray tell_task = "echo \"$1\" >&2\n";
inline const QByteArray say_loaded = saying(loaded_line()) + "read -r word\n";
inline const QByteArray say_looked = saying(looked_line({}));
inline const QByteArray say_extracted = saying(table_done_line(QStringLiteral("devices"), 3))
                                        + saying(table_done_line(QStringLiteral("paired_devices"), 0))
                                        + saying(extracted_line({QStringLiteral("log"), true}));
inline const QByteArray say_inspected = [] {
    inspection found;
    found.result_sha256 = QStringLiteral("cd");
    found.rows = {{QStringLiteral("devices"), 3, {}, 3}, {QStringLiteral("paired_devices"), 0, {}, 0}};
    found.log.sha256 = QStringLiteral("log");
    return saying(inspected_line(found));
}();
inline const QByteArray whole = say_loaded + say_looked + say_extracted + say_inspected;
/** What another worker than the first does. */
inline const QByteArray others_inspect = tell_task + "[ $1 = settle ] && exit\n[ $1 = inspect ] && {\n" + say_inspected
                                         + "exit; }\n";

} // namespace worker_script

#endif
