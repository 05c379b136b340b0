// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_ROW_RANKS_H
#define HOST_REPORT_READING_ROW_RANKS_H

#include "host/sqlite/sqlite.h"
#include "host/text/cell.h"

#include <QByteArray>
#include <QLatin1StringView>

#include <optional>
#include <vector>

struct host_values;

/** The two counters of a row as it is now: with its write-ahead log, else in the evidence, else in the result. */
struct counter_pair
{
    std::optional<qint64> seen;
    std::optional<qint64> connected;
};

counter_pair counters_of(const sqlite_statement &row, const host_values &host);

/** The place of each counter among all of them: the largest is 1, equal ones share theirs. */
class counter_ranks
{
public:
    void add(const std::optional<qint64> &counter);
    void sort();

    /** Of a counter that was added; nothing for none. */
    std::optional<qint64> rank_of(const std::optional<qint64> &counter) const;

private:
    // The largest first. Those of real devices fit into half the room, and there may be millions.
    std::vector<quint32> ordinary;
    std::vector<qint64> others;
};

/** The ranks of the rows of one table of one source. */
struct table_ranks
{
    counter_ranks seen;
    counter_ranks connected;
    QString problem; ///< what kept counters from being read; empty: nothing
};

/**
 * The times that a counter of unknown origin would be, as seconds since 1970 from 2001-09-09 to 2035, since 2001 from
 * 2010-07-05 to 2035:
 * [{"as":"seconds since 1970","utc":"2023-11-14T22:13:20Z"}]. It is not known to be one.
 */
QByteArray counter_readings(const std::optional<qint64> &counter);

#endif
