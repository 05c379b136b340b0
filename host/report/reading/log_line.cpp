// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/log_line.h"

#include <algorithm>

namespace {

/** What may stand behind a name: its quotation mark, and the next part of the line. */
constexpr QByteArrayView name_ends[] = {"', Md '", "', AID ", "', PairedBT", "', SSID "};

/** The text between @p start and the next ", " or the end of the line. */
std::optional<QByteArray> part(QByteArrayView line, QByteArrayView start)
{
    const qsizetype found = line.lastIndexOf(start);
    if (found < 0)
        return {};
    const QByteArrayView rest = line.sliced(found + start.size());
    const qsizetype end = rest.indexOf(QByteArrayView(", "));
    return (end < 0 ? rest : rest.first(end)).toByteArray().trimmed();
}

std::optional<QByteArray> name_of(QByteArrayView line)
{
    constexpr QByteArrayView start(", Nm '");
    const qsizetype found = line.indexOf(start);
    if (found < 0)
        return {};
    const QByteArrayView rest = line.sliced(found + start.size());
    qsizetype end = -1;
    for (const QByteArrayView name_end : name_ends) {
        const qsizetype here = rest.indexOf(name_end);
        if (here >= 0 && (end < 0 || here < end))
            end = here;
    }
    if (end < 0)
        end = rest.lastIndexOf('\'');
    return decoded_escapes(end < 0 ? rest : rest.first(end));
}

/** The byte of "\M-x", "\M^X", "\^X" or "\\" at the start of @p text and how long the escape is; 0: there is none. */
std::pair<char, qsizetype> escape_at(QByteArrayView text)
{
    const bool is_meta = text.startsWith("\\M");
    const qsizetype kind = is_meta ? 2 : 1; // place of '-' or '^'
    if (text.size() > kind + 1 && text.at(kind) == '^')
        return {char((text.at(kind + 1) ^ 0x40) | (is_meta ? 0x80 : 0)), kind + 2};
    if (is_meta && text.size() > 3 && text.at(2) == '-')
        return {char(text.at(3) | 0x80), 4};
    if (text.startsWith("\\\\"))
        return {'\\', 2};
    return {0, 0};
}

} // namespace

device_line read_device_line(QByteArrayView line)
{
    device_line fields;
    fields.name = name_of(line);
    fields.identifier = part(line, "SFDevice ID ");
    if (!fields.identifier)
        fields.identifier = part(line, ", PI ");
    fields.rssi = part(line, ", RSSI ");
    fields.aid = part(line, ", AID ");
    fields.is_paired = line.contains(QByteArrayView(", PairedBT"));
    return fields;
}

QByteArray decoded_escapes(QByteArrayView text)
{
    QByteArray result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size();) {
        const auto [byte, length] = text.at(i) == '\\' ? escape_at(text.sliced(i)) : std::pair<char, qsizetype>{0, 0};
        result.append(length > 0 ? byte : text.at(i));
        i += qMax<qsizetype>(length, 1);
    }
    return result;
}
