// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/plugin_loader.h"

#include "host/files/host_error.h"
#include "plugin/bluetooth_logs.h"

#include <QFileInfo>
#include <QLibrary>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView artifact_name("Bluetooth Logs");

[[noreturn]] void fail(const QString &path, const QString &reason)
{
    throw host_error(error_kind::io, u"the plug-in file "_s + path + u" cannot be used: "_s + reason);
}

} // namespace

std::unique_ptr<bluetooth_logs> load_plugin(const QString &path)
{
    if (!QFileInfo(path).isFile())
        throw host_error(error_kind::io, u"there is no plug-in file "_s + path);

    QLibrary library(path);
    if (!library.load())
        throw host_error(error_kind::io,
                         u"the plug-in file "_s + path + u" cannot be loaded: "_s + library.errorString());
    const auto create_object = reinterpret_cast<bluetooth_logs *(*) ()>(library.resolve("create_object"));
    if (!create_object)
        fail(path, u"it has no function create_object"_s);
    std::unique_ptr<bluetooth_logs> plugin(create_object());
    if (!plugin)
        fail(path, u"its function create_object gives no object"_s);
    const QString name = plugin->pub_get_artifact_name();
    if (name != artifact_name) {
        static_cast<void>(plugin.release()); // whatever it is
        fail(path, u"it is the plug-in of another artifact, "_s + name);
    }
    return plugin;
}
