// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_RAW_JSON_H
#define HOST_TEXT_RAW_JSON_H

#include <QByteArrayView>
#include <QHash>

#include <optional>

/**
 * The members of a JSON object, each value as the text that it is there: parsed and written again it would lose the
 * order of its own members and the form of its numbers. Nothing when @p object is no JSON object. Names are without
 * their quotation marks, their escapes as they stand; of a name that comes twice the last one counts. The views are
 * valid as long as the text.
 */
std::optional<QHash<QByteArrayView, QByteArrayView>> raw_json_members(QByteArrayView object);

#endif
