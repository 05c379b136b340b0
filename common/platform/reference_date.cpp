// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/reference_date.h"

#include <cmath>

QDateTime date_of_reference_seconds(double seconds)
{
    constexpr double year_1 = -63113904000.0;
    constexpr double year_10000 = 252423993600.0;
    if (!(seconds >= year_1 && seconds < year_10000)) // so put, NaN is outside
        return {};
    const QDateTime start(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return start.addSecs(static_cast<qint64>(std::floor(seconds)));
}
