// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_PROPERTY_LIST_H
#define COMMON_PLATFORM_PROPERTY_LIST_H

#include <QByteArray>
#include <QString>
#include <QVariant>

// What the plug-in needs of the platform's property lists. A port provides these functions in files of its own; CMake
// picks the files.
//
// An object is whatever the platform's property lists are made of: a Foundation object, or a node of libplist. The
// functions take any such object, or null. They neither keep nor free it, and they throw nothing: a failure is an empty
// result.

/**
 * The object as a Qt value: QString, bool, qint64 (quint64 above its range), double, QDateTime (UTC), QByteArray,
 * QVariantList or QVariantMap, with containers converted to their last level. An invalid value for null and for kinds
 * that property lists do not have. A boolean is told from the numbers 0 and 1.
 */
QVariant property_list_value(const void *object);

/**
 * The value that stands under the text @p key in @p dictionary; the key's case and every blank count. Invalid when
 * there is none, or when either is not of its kind.
 */
QVariant property_list_entry(const void *dictionary, const void *key);

/**
 * Parses a property list, XML or binary, that guarded_property_list() has let through. Invalid when it is malformed.
 */
QVariant parse_property_list(const QByteArray &guarded);

#endif
