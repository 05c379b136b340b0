// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_IOS_UID_PARSE_LOG_LINE_H
#define EXTRACTORS_IOS_UID_PARSE_LOG_LINE_H

#include <QLatin1StringView>
#include <QString>

#include <span>

/** The words of one kind of log line; docs/formats.md shows such lines. */
struct log_line_format
{
    std::span<const QLatin1StringView> markers; ///< a line of this kind holds them all; the rarest stands first
    QLatin1StringView start;                    ///< the parts of the line begin one character behind it
    QLatin1StringView identifier;               ///< how the part with the device's identifier begins
    QLatin1StringView status_end;               ///< the status stands before it; empty where lines have none

    static const log_line_format found_device;
    static const log_line_format active_device;
};

/** The texts of one log line. Null where the line has no such part, empty where nothing follows the part's name. */
struct log_line_fields
{
    QString identifier;
    QString device_name;
    QString model;
    QString status; ///< never null
    QString date;   ///< as it stands in the line, without year and zone
};

/**
 * Takes apart a line that holds the format's start, such as "May 17 12:11:05 host process[1]: BLE device found:
 * SFDevice ID 1A, Nm 'name', Md 'model'". The parts are separated by ", "; of parts with the same name the last one
 * counts. A value ends at the first ", " even if that belongs to the value.
 */
log_line_fields parse_log_line(const QString &line, const log_line_format &format);

#endif
