// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_UTC_TIME_H
#define HOST_FILES_UTC_TIME_H

#include <QDateTime>
#include <QString>

#include <ctime>

/** "2026-01-31T12:00:00Z". */
inline QString utc_now()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
}

/** A time of a file, to the nanosecond: "2026-01-31T12:00:00.123456789Z". */
inline QString utc_text(const struct timespec &time)
{
    return QDateTime::fromSecsSinceEpoch(time.tv_sec, Qt::UTC).toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss."))
           + QString::number(qint64(time.tv_nsec)).rightJustified(9, u'0') + u'Z';
}

#endif
