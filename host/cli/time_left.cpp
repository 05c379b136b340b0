// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/time_left.h"

#include <algorithm>

std::optional<qint64> time_left::seconds(qint64 elapsed, double done)
{
    if (done <= 0)
        return least;
    const auto estimate = qint64(double(elapsed) * std::max(0.0, 1 - done) / done / 1000);
    least = std::min(least.value_or(estimate), estimate);
    return least;
}
