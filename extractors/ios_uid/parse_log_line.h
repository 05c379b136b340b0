// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_IOS_UID_PARSE_LOG_LINE_H
#define EXTRACTORS_IOS_UID_PARSE_LOG_LINE_H

#include <QLatin1StringView>
#include <QString>

/** Where the texts of one kind of log line stand. */
struct log_line_format
{
    QLatin1StringView start;      ///< the parts of the line begin one character behind it
    QLatin1StringView identifier; ///< how the part with the device's identifier begins
    QLatin1StringView status_end; ///< the status stands before it; empty where lines have none
};

/** The texts of one log line. A part that the line lacks is null, one with nothing behind its name is empty. */
struct log_line_fields
{
    QString identifier;
    QString device_name;
    QString model;
    QString status; ///< never null
    QString date;   ///< as the line has it, without year and zone
};

/**
 * Takes apart a line that holds the format's start, such as "May 17 12:11:05 host process[1]: BLE device found:
 * SFDevice ID 1A, Nm 'name', Md 'model'". The parts are separated by ", "; of parts with the same name the last one
 * counts. A separator within a value is not recognised as such: the value ends there.
 */
log_line_fields parse_log_line(const QString &line, const log_line_format &format);

#endif
