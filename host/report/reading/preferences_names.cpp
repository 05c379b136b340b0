// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/preferences_names.h"

#include "common/property_list/property_list_file.h"
#include "host/devices/device_address.h"

#include <algorithm>

using namespace Qt::StringLiterals;

preferences_names::preferences_names(const QString &file)
{
    const QVariant list = read_property_list(file);
    if (list.typeId() != QMetaType::QVariantMap) {
        problem_text = u"it is no property list with a dictionary at its top"_s;
        return;
    }
    const QVariantMap devices = list.toMap().value(u"DeviceCache"_s).toMap();
    for (auto device = devices.cbegin(); device != devices.cend(); ++device) {
        const std::optional<device_address> address = parse_device_address(device.key().toUtf8());
        const QVariant name = device->toMap().value(u"Name"_s);
        if (address && address->joins_sources() && name.typeId() == QMetaType::QString
            && !names.contains(address->bytes))
            names.insert(address->bytes, name.toString().toUtf8());
    }
}

QByteArrayList preferences_names::addresses() const
{
    QByteArrayList sorted = names.keys();
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

QByteArray preferences_names::name_of(std::initializer_list<QByteArrayView> texts) const
{
    if (names.isEmpty())
        return {};
    for (const QByteArrayView text : texts) {
        const std::optional<device_address> address = parse_device_address(text);
        if (address && address->joins_sources() && names.contains(address->bytes))
            return names.value(address->bytes);
    }
    return {};
}
