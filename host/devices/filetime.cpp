// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/filetime.h"

#include <QDateTime>

#include <limits>

using namespace Qt::StringLiterals;

QString filetime_text(quint64 filetime)
{
    constexpr quint64 steps_in_a_second = 10'000'000;
    constexpr qint64 seconds_1601_to_1970 = 11'644'473'600;
    constexpr qint64 end_of_9999 = 253'402'300'800; // since 1970
    const qint64 seconds = qint64(filetime / steps_in_a_second) - seconds_1601_to_1970;
    if (filetime == 0 || filetime == std::numeric_limits<quint64>::max() || seconds >= end_of_9999)
        return {};
    const QString text = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(u"yyyy-MM-ddTHH:mm:ss"_s);
    const quint64 fraction = filetime % steps_in_a_second;
    if (fraction == 0)
        return text + u'Z';
    return text + u'.' + QString::number(fraction).rightJustified(7, u'0') + u'Z';
}
