// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_LOG_DATE_H
#define HOST_SOURCE_LOG_DATE_H

#include <QByteArray>

/**
 * The moment that a line of a log begins with, where its form has the year and the zone, as an export by "log show"
 * does: "2024-05-17 12:11:05.123456+0200" gives "2024-05-17T12:11:05.123456+02:00" (ISO 8601). Empty for every other
 * line, and for a date that is none.
 */
QByteArray date_with_zone(QByteArrayView line);

#endif
