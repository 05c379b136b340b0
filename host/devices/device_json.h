// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_DEVICE_JSON_H
#define HOST_DEVICES_DEVICE_JSON_H

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVariant>

/** "2026-01-31T12:00:00Z", with milliseconds where there are any. */
QString utc_of(const QDateTime &time);

/**
 * Appends a value of a property list or of a registry key: texts, exact integers, reals, true and false as such, a date
 * as utc_of() writes it, data as {"base64": "…"}, lists, maps by the order of their keys; null for everything else.
 */
void append_json_variant(QByteArray &json, const QVariant &value);

#endif
