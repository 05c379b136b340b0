// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef BENCH_MEASURE_H
#define BENCH_MEASURE_H

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <vector>

/** Every work is timed so often, by turns with what it is compared to. */
constexpr int rounds = 5;

template<typename Work>
double seconds_of(Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e9;
}

inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/**
 * A field of a process's status in bytes: "VmHWM:" is the peak, "VmRSS:" the present size. 0 where there is none. The
 * process is a number, or this one.
 */
inline qint64 process_memory(const QByteArray &field, const QString &process = QStringLiteral("self"))
{
    QFile status(QStringLiteral("/proc/") + process + QStringLiteral("/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(field))
            return line.simplified().split(' ').value(1).toLongLong() * 1024;
    }
    return 0;
}

#endif
