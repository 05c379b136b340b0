// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/function_log.h"
#include "common/property_list/property_list_file.h"
#include "extractors/macos/bluetooth_logs_macos.h"

#include <QFileInfo>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

constexpr function_log log_name(u"QString bluetooth_logs_macos::xcode_get_device_name(QString)");

} // namespace

QString bluetooth_logs_macos::xcode_get_device_name(QString device_key)
{
    log_name(u"Starts");
    const QString path = source_root_path + u"Library/Preferences/com.apple.Bluetooth.plist"_s;
    if (!QFileInfo::exists(path))
        return {};
    if (!path.isValidUtf16()) { // the system would be asked for a file of another name
        log_name(u"target_file open -------FAILED------");
        log_name(path);
        return {};
    }

    const QVariant list = read_property_list(path);
    if (list.typeId() != QMetaType::QVariantMap) {
        log_name(u"m_plist open -------FAILED------");
        log_name(path);
        return {};
    }

    const QVariantMap device = list.toMap().value(u"DeviceCache"_s).toMap().value(device_key).toMap();
    const QVariant name = device.value(u"Name"_s);
    log_name(u"Ends");
    return name.typeId() == QMetaType::QString ? name.toString() : QString();
}
