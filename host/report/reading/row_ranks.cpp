// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/row_ranks.h"

#include "host/report/reading/counter.h"
#include "host/report/reading/row_reading.h"

#include <QDateTime>

#include <algorithm>
#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

struct epoch
{
    const char *name;
    qint64 since_1970; ///< in seconds
    qint64 least; ///< smaller counters are plausible as nothing: any small number would be a time of the first years
};

constexpr epoch epochs[] = {
    {"seconds since 1970", 0, 1000000000},        // 2001-09-09
    {"seconds since 2001", 978307200, 300000000}, // 2010-07-05
};
constexpr qint64 end_of_2035 = 2082758399;

std::optional<qint64> counter_in(const cell &in_evidence, const sqlite_statement &row, QLatin1StringView column)
{
    if (!in_evidence.is_null())
        return counter_of(in_evidence);
    const int place = row.column_named(column);
    return place < 0 ? std::nullopt : counter_of(row.value_of(place));
}

/** How many of the list, the largest of which is first. */
template<typename Number>
qint64 larger_than(qint64 counter, const std::vector<Number> &list)
{
    return std::partition_point(list.cbegin(), list.cend(), [counter](Number one) { return qint64(one) > counter; })
           - list.cbegin();
}

} // namespace

counter_pair counters_of(const sqlite_statement &row, const host_values &host)
{
    if (host.is_changed_by_log)
        return host.with_log;
    return {counter_in(host.last_seen_time, row, "last_seen_time"_L1),
            counter_in(host.last_connection_time, row, "last_connection_time"_L1)};
}

void counter_ranks::add(const std::optional<qint64> &counter)
{
    if (!counter)
        return;
    if (*counter >= 0 && *counter <= std::numeric_limits<quint32>::max())
        ordinary.push_back(quint32(*counter));
    else
        others.push_back(*counter);
}

void counter_ranks::sort()
{
    const auto largest_first = [](auto &list) { std::sort(list.begin(), list.end(), std::greater<>()); };
    largest_first(ordinary);
    largest_first(others);
    ordinary.shrink_to_fit();
}

std::optional<qint64> counter_ranks::rank_of(const std::optional<qint64> &counter) const
{
    if (!counter)
        return {};
    return larger_than(*counter, ordinary) + larger_than(*counter, others) + 1;
}

QByteArray counter_readings(const std::optional<qint64> &counter)
{
    QByteArray json = "[";
    for (const epoch &one : epochs) {
        if (!counter || *counter < one.least || *counter > end_of_2035 - one.since_1970)
            continue;
        const QDateTime time = QDateTime::fromSecsSinceEpoch(*counter + one.since_1970, Qt::UTC);
        json += json.size() > 1 ? "," : "";
        json += QByteArray("{\"as\":\"") + one.name + "\",\"utc\":\"" + time.toString(Qt::ISODate).toLatin1() + "\"}";
    }
    return json + ']';
}
