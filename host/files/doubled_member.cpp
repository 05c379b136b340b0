// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/doubled_member.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <vector>

namespace {

/** Where the string ends that begins at @p begin: behind its closing quotation mark, or behind the text. */
qsizetype end_of_string(QByteArrayView json, qsizetype begin)
{
    qsizetype place = begin + 1;
    while (place < json.size() && json[place] != '"')
        place += json[place] == '\\' ? 2 : 1;
    return qMin(place + 1, json.size());
}

bool is_followed_by_colon(QByteArrayView json, qsizetype place)
{
    while (place < json.size()
           && (json[place] == ' ' || json[place] == '\n' || json[place] == '\r' || json[place] == '\t'))
        ++place;
    return place < json.size() && json[place] == ':';
}

/** A string with its quotation marks as what it stands for. */
QString decoded(QByteArrayView string)
{
    if (!string.contains('\\') && string.size() >= 2)
        return QString::fromUtf8(string.sliced(1, string.size() - 2));
    return QJsonDocument::fromJson('[' + string.toByteArray() + ']').array().first().toString();
}

} // namespace

std::optional<QString> doubled_member(QByteArrayView json)
{
    std::vector<QSet<QString>> names; // of the objects around the place
    qsizetype place = 0;
    while (place < json.size()) {
        const char character = json[place];
        if (character == '"') {
            const qsizetype end = end_of_string(json, place);
            if (!names.empty() && is_followed_by_colon(json, end)) {
                const QString name = decoded(json.sliced(place, end - place));
                if (names.back().contains(name))
                    return name;
                names.back().insert(name);
            }
            place = end;
            continue;
        }
        if (character == '{')
            names.emplace_back();
        else if (character == '}' && !names.empty())
            names.pop_back();
        ++place;
    }
    return {};
}
