// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/worker_environment.h"

#include <QFile>

#include <algorithm>

extern char **environ; // NOLINT(readability-redundant-declaration): not every system's headers declare it

namespace {

/**
 * All that passes: the zone of the plug-in's log, settings of the compiler's checks, which change no result, and what
 * doubles of the plug-in read. Others make libraries load code, write files or convert texts otherwise.
 */
constexpr QByteArrayView passed_on[] = {"TZ=", "ASAN_OPTIONS=", "LSAN_OPTIONS=", "UBSAN_OPTIONS=", "BLUETOOTH_LOGS_"};

bool is_passed_on(QByteArrayView variable)
{
    return std::any_of(std::begin(passed_on), std::end(passed_on),
                       [variable](QByteArrayView name) { return variable.startsWith(name); });
}

} // namespace

QList<QByteArray> worker_environment()
{
    QList<QByteArray> variables;
    for (char **variable = environ; *variable; ++variable) {
        if (is_passed_on(*variable))
            variables.append(*variable);
    }
    // No folders, so that nothing is made there while the case is not yet the program's own.
    for (const QByteArrayView name : {"TMPDIR=", "SQLITE_TMPDIR=", "XDG_RUNTIME_DIR=", "XDG_CACHE_HOME="})
        variables.append(name.toByteArray() + "/dev/null");
    variables.append("LC_ALL=C.UTF-8"); // evidence is Unicode, whatever the terminal claims
    variables.append("QT_QPA_PLATFORM=offscreen");
    variables.append("QT_LOGGING_RULES=default.debug=true"); // the plug-in's log comes as such messages
    return variables;
}

void use_temporary_folder(const QString &folder)
{
    for (const char *name : {"TMPDIR", "SQLITE_TMPDIR"})
        qputenv(name, QFile::encodeName(folder));
}
