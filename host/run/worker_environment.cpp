// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/worker_environment.h"

#include <QFile>

extern char **environ; // NOLINT(readability-redundant-declaration): not every system's headers declare it

namespace {

/** Variables that would change what the plug-in does or where it writes. */
constexpr QByteArrayView replaced[] = {
    "TMPDIR=",  "SQLITE_TMPDIR=",   "XDG_RUNTIME_DIR=", "XDG_CACHE_HOME=",           "LC_ALL=",
    "DISPLAY=", "WAYLAND_DISPLAY=", "SESSION_MANAGER=", "DBUS_SESSION_BUS_ADDRESS=",
};

/** Where Qt's own plug-ins are stays as it is. */
constexpr QByteArrayView kept_of_qt = "QT_PLUGIN_PATH=";

bool is_replaced(QByteArrayView variable)
{
    for (const QByteArrayView name : replaced) {
        if (variable.startsWith(name))
            return true;
    }
    return variable.startsWith("QT_") && !variable.startsWith(kept_of_qt);
}

} // namespace

QList<QByteArray> worker_environment()
{
    QList<QByteArray> variables;
    for (char **variable = environ; *variable; ++variable) {
        if (!is_replaced(*variable))
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
