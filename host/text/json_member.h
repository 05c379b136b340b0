// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_JSON_MEMBER_H
#define HOST_TEXT_JSON_MEMBER_H

#include <QJsonArray>
#include <QJsonValue>
#include <QString>
#include <QStringList>

/** A member of a record: null says that there is no text. */
inline QJsonValue text_or_null(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

/** The texts of an array; what is no text there is an empty one. */
inline QStringList texts_from(const QJsonValue &json)
{
    QStringList texts;
    for (const auto text : json.toArray())
        texts.append(text.toString());
    return texts;
}

#endif
