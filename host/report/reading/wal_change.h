// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_WAL_CHANGE_H
#define HOST_REPORT_READING_WAL_CHANGE_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"
#include "host/report/reading/row_notes.h"
#include "host/report/reading/row_place.h"
#include "host/report/reading/row_ranks.h"

#include <QByteArray>
#include <QString>

#include <functional>

/** A row of a database that is another one with its write-ahead log than in the main file alone. */
struct wal_change
{
    const report_source &source;
    QByteArray table; ///< of the result
    row_place evidence_place;
    QByteArray change; ///< added, changed or deleted
    QByteArray before; ///< the row in the main file: a JSON object by column; empty: it is not there
    QByteArray after;  ///< the row with the log
    notes_of_one notes;
    note_marks marks = note_marks(notes);

    const row_place &place() const
    {
        return evidence_place;
    }

    /** Of a changed row the columns that are other ones with the log, as a JSON object; else empty. */
    QByteArray changed_values() const;
    /** Those of the row with the log. */
    counter_pair counters_after() const;
};

const line_columns<wal_change> &wal_columns();

/**
 * Gives the changes that the host has kept of a source, none where it has no log. Returns why not all of them could be
 * read, in plain words; empty if all could.
 */
QString for_each_wal_change(const report_case &the_case, const report_source &source,
                            const std::function<void(const wal_change &change)> &take);

#endif
