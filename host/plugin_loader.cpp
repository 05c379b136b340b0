// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/plugin_loader.h"

#include "host/host_error.h"
#include "plugin/bluetooth_logs.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>

using namespace Qt::StringLiterals;

QString default_plugin_file()
{
    return QCoreApplication::applicationDirPath() + u"/" BLUETOOTH_LOGS_PLUGIN_FILE ""_s;
}

std::unique_ptr<bluetooth_logs> load_plugin(const QString &file)
{
    // An absolute path: a bare name would be searched for in the system's library folders.
    const QString path = QFileInfo(file).absoluteFilePath();
    if (!QFileInfo(path).isFile())
        throw host_error(exit_code::internal_error, u"there is no plug-in file "_s + path);

    QLibrary library(path);
    const auto create_object = reinterpret_cast<bluetooth_logs *(*) ()>(library.resolve("create_object"));
    if (!create_object)
        throw host_error(exit_code::internal_error,
                         u"the plug-in file "_s + path + u" cannot be loaded: "_s + library.errorString());
    return std::unique_ptr<bluetooth_logs>(create_object());
}
