// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/counter.h"

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

std::optional<qint64> counter_of(const cell &value)
{
    qint64 number = value.integer;
    if (value.kind == cell::type::text) {
        bool is_number = false;
        number = value.bytes.toByteArray().toLongLong(&is_number);
        if (!is_number)
            return {};
    } else if (value.kind != cell::type::integer) {
        return {};
    }
    return number == 0 ? std::nullopt : std::optional(number);
}

QList<std::optional<qint64>> ranks_of(const QList<std::optional<qint64>> &counters)
{
    QList<qint64> sorted;
    for (const std::optional<qint64> &counter : counters) {
        if (counter)
            sorted.append(*counter);
    }
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    QList<std::optional<qint64>> ranks;
    for (const std::optional<qint64> &counter : counters) {
        if (!counter) {
            ranks.append(std::nullopt);
            continue;
        }
        const auto first = std::lower_bound(sorted.cbegin(), sorted.cend(), *counter, std::greater<>());
        ranks.append(first - sorted.cbegin() + 1);
    }
    return ranks;
}

QString plausible_time(const std::optional<qint64> &counter)
{
    // 2001-09-09 to 2039 in seconds since 1970, 2010-07-05 to 2032 in seconds since 2001.
    if (counter && *counter >= 1000000000 && *counter <= 2200000000)
        return u"plausible as Unix time"_s;
    if (counter && *counter >= 300000000 && *counter < 1000000000)
        return u"plausible as Apple time"_s;
    return {};
}
