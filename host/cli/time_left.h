// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_TIME_LEFT_H
#define HOST_CLI_TIME_LEFT_H

#include <QtGlobal>

#include <optional>

/** How long a run will still take. What was once shown never grows: an estimate that is worse than it stays unsaid. */
class time_left
{
public:
    /**
     * The seconds, when @p elapsed milliseconds were needed for the part @p done of the work, from 0 to 1. None before
     * anything is done.
     */
    std::optional<qint64> seconds(qint64 elapsed, double done);

private:
    std::optional<qint64> least;
};

#endif
