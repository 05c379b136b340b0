// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_PROPERTY_LIST_DEVICES_H
#define HOST_DEVICES_PROPERTY_LIST_DEVICES_H

#include "host/devices/host_device.h"

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/**
 * The dictionary at the top of a property list of the evidence. Nothing, and a problem in @p result, when the bytes are
 * no such list, or are made to overwhelm their reader.
 */
std::optional<QVariantMap> top_dictionary(const QByteArray &bytes, device_list &result);

#endif
