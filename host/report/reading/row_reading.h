// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_ROW_READING_H
#define HOST_REPORT_READING_ROW_READING_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/row_place.h"
#include "host/report/reading/row_ranks.h"
#include "host/sqlite/sqlite.h"
#include "host/text/cell.h"

#include <QString>

#include <memory>

/**
 * What the host itself reads of a device in a working copy or a line of a log, beside the plug-in's row. What each says
 * stands with its column (host_columns()).
 */
struct host_values
{
    row_place place;

    cell resolved_address;
    cell last_seen_time;
    cell last_connection_time;
    cell name_origin;
    cell gatt_service_change_config;
    cell custom_properties;
    cell tags;
    cell icloud_identifier;
    cell address_kind;
    cell name;
    cell rssi;
    cell aid;
    cell line_text;
    cell preferences_name;
    cell vendor;
    cell differs;
    cell left_out;
    cell wal;
    cell wal_values;
    cell date;

    bool is_changed_by_log = false; ///< by a write-ahead log, which also deletes
    counter_pair with_log;          ///< the counters of such a row; none of one that is deleted
};

/** Follows the rows of one result table in the evidence that they come from, one after the other. */
class row_reading
{
public:
    row_reading() = default;
    virtual ~row_reading() = default;
    Q_DISABLE_COPY_MOVE(row_reading)

    /** Goes to the evidence of the result's next row, @p row. Without any, the place is empty and all values are null.
     */
    virtual void next(const sqlite_statement &row) = 0;

    /** Valid until the next call of next(). */
    const host_values &values() const
    {
        return current;
    }

    /** Why not all of it could be read; empty if all could. */
    QString problem() const
    {
        return problem_text;
    }

protected:
    host_values current;
    QString problem_text;
};

/** What of the evidence is wanted. */
enum class reading_depth {
    everything,
    counters ///< those of the row alone, and what the write-ahead log makes of them
};

/** Never null. @p row is the statement of the result table, before its first row. */
std::unique_ptr<row_reading> open_row_reading(const report_case &the_case, const report_source &source,
                                              const QString &table, const sqlite_statement &row,
                                              reading_depth depth = reading_depth::everything);

#endif
