// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_RUN_MESSAGE_H
#define HOST_CASE_RUN_MESSAGE_H

#include <QJsonValue>
#include <QLatin1StringView>
#include <QString>

/** Something that the examiner must know of a run. */
struct run_message
{
    enum class weight { note, warning, error };

    weight importance = weight::note;
    QString text;

    /** {"weight": "warning", "text": "…"}, as it stands in records. */
    QJsonValue to_json() const;
    /** Records of version 1 have the text alone: it is a note. */
    static run_message from_json(const QJsonValue &json);
};

/** "note", "warning" or "error". */
QLatin1StringView weight_name(run_message::weight importance);

#endif
