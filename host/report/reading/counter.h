// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_COUNTER_H
#define HOST_REPORT_READING_COUNTER_H

#include "host/text/cell.h"

#include <QList>
#include <QString>

#include <optional>

/** A counter of the evidence: integers, and texts that are one. Nothing for 0, which means never, and for the rest. */
std::optional<qint64> counter_of(const cell &value);

/** The rank of each counter among all of them: the largest is 1, equal ones share theirs. None without a counter. */
QList<std::optional<qint64>> ranks_of(const QList<std::optional<qint64>> &counters);

/** "plausible as Unix time" and its like, where the number may be a time; else empty. */
QString plausible_time(const std::optional<qint64> &counter);

#endif
