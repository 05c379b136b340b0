// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PROPERTY_LIST_PROPERTY_LIST_FILE_H
#define COMMON_PROPERTY_LIST_PROPERTY_LIST_FILE_H

#include <QString>
#include <QVariant>

/**
 * The property list, XML or binary, in the regular file at @p path, as property_list_value() gives it. Invalid when the
 * file cannot be read, is malformed, or is made to overwhelm its reader; see guarded_property_list().
 */
QVariant read_property_list(const QString &path);

#endif
