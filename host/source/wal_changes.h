// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_WAL_CHANGES_H
#define HOST_SOURCE_WAL_CHANGES_H

#include "host/source/evidence_state.h"

#include <QJsonValue>
#include <QString>
#include <QStringList>

/** What the write-ahead logs of a source say that the main files of its databases do not. */
struct wal_findings
{
    /**
     * {"devices": {"added": 1, "changed": 0, "deleted": 2}}: a member for each database that has a log, null for one
     * that cannot be compared. Null when there is none.
     */
    QJsonValue counts;
    QStringList problems; ///< why one cannot be compared, in plain words: what is wrong with it
    QStringList failures; ///< the same where nothing is known to be wrong with it: a full disk, a read error
    bool is_out_of_memory = false;
};

/**
 * Compares the device tables of the working copies below @p copies, main file alone against main file and -wal, by
 * rowid and content, and writes the rows that differ to @p file (docs/report-formats.md). No file is written where
 * there is no -wal. A log does not say which database it belongs to: one of another database with the same layout gives
 * what SQLite makes of the two. SQLite works on copies of the copies, below @p scratch, which are removed again. Throws
 * host_error (io) when something cannot be written.
 */
wal_findings write_wal_changes(const evidence_state &evidence, const QString &copies, const QString &scratch,
                               const QString &file);

#endif
