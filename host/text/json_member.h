// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_JSON_MEMBER_H
#define HOST_TEXT_JSON_MEMBER_H

#include <QJsonValue>
#include <QString>

/** A member of a record: null says that there is no text. */
inline QJsonValue text_or_null(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

#endif
