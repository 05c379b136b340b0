// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/reference_date.h"

#include <QTimeZone>

#include <cmath>

QDateTime date_of_reference_seconds(double seconds)
{
    constexpr double year_1 = -63113904000.0;
    constexpr double year_10000 = 252423993600.0;
    if (!(seconds >= year_1 && seconds < year_10000)) // written so that NaN fails the test
        return {};
    return QDateTime::fromSecsSinceEpoch(apple_reference_date + static_cast<qint64>(std::floor(seconds)),
                                         QTimeZone::utc())
        .toUTC(); // Qt before 6.5 writes the zone as "+00:00" otherwise, not as "Z"
}
