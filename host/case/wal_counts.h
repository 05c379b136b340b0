// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_WAL_COUNTS_H
#define HOST_CASE_WAL_COUNTS_H

#include <QJsonValue>
#include <QString>

/** How many rows the write-ahead logs of sources add to, change in and delete from the main files of the databases. */
struct wal_counts
{
    qint64 added = 0;
    qint64 changed = 0;
    qint64 deleted = 0;

    wal_counts() = default;
    /** The sum over the result tables of a record's member "wal". */
    explicit wal_counts(const QJsonValue &wal);

    wal_counts &operator+=(const wal_counts &other);

    bool has_differences() const
    {
        return added + changed + deleted > 0;
    }

    /** What that means for the plug-in's rows, in plain words. */
    QString text() const;
};

#endif
