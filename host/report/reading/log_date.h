// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_LOG_DATE_H
#define HOST_REPORT_READING_LOG_DATE_H

#include <QByteArray>
#include <QDateTime>

#include <optional>

/**
 * The date at the start of a line whose form has year and zone, in ISO 8601: "2024-05-17T12:11:05.123456+02:00" for
 * "2024-05-17 12:11:05.123456+0200 …". Empty: the line has none.
 */
QByteArray zoned_date(QByteArrayView line);

/** The date of a line without year and zone: "May 17 12:11:05". */
struct yearless_date
{
    int month = 1;
    int day = 1;
    QTime time;
};

std::optional<yearless_date> date_without_year(QByteArrayView line);

#endif
