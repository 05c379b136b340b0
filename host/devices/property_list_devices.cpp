// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/property_list_devices.h"

#include "common/platform/property_list.h"
#include "common/property_list/property_list_guard.h"

using namespace Qt::StringLiterals;

std::optional<QVariantMap> top_dictionary(const QByteArray &bytes, device_list &result)
{
    const QByteArray guarded = guarded_property_list(bytes);
    const QVariant list = guarded.isNull() ? QVariant() : parse_property_list(guarded);
    if (list.typeId() == QMetaType::QVariantMap)
        return list.toMap();
    result.problems.append(bytes.size() > largest_property_list_bytes
                               ? u"it has more than "_s + QString::number(largest_property_list_bytes >> 20)
                                     + u" MiB, too much for such a list"_s
                               : u"it is no property list with a dictionary at its top"_s);
    return {};
}
