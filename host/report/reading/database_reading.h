// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_DATABASE_READING_H
#define HOST_REPORT_READING_DATABASE_READING_H

#include "host/report/reading/preferences_names.h"
#include "host/report/reading/row_reading.h"
#include "host/source/macos_databases.h"

#include <QHash>
#include <QSet>

#include <utility>
#include <vector>

/** What a write-ahead log makes of a row of the main file. */
struct row_in_log
{
    QByteArray change;
    QByteArray values;     ///< of a changed row, the columns that are other ones there: a JSON object
    counter_pair counters; ///< those of the row then
};

/** A working copy that a host reading reads. */
struct database_copy
{
    QString file;
    QString path; ///< what locators call it
    const macos_database &database;
    bool has_wal = false;                       ///< and it was compared with the database
    QHash<qint64, row_in_log> wal_changes = {}; ///< of rows in the main file, by their rowids
    QString problem = {};                       ///< why not all of them are known
    qint64 lost = 0; ///< how many rows the result lacks: so many may be passed over to find the one with the next UUID
};

/** Reads the working copy of a macOS database beside the rows that the plug-in made of it, in the same order. */
class database_reading : public row_reading
{
public:
    database_reading(const database_copy &copy, const sqlite_statement &row, const vendor_list &vendors,
                     const preferences_names &names, reading_depth depth);

    void next(const sqlite_statement &row) override;

private:
    /** A column of the evidence beside the result's column that the plug-in copies it to; -1: there is none. */
    struct column_pair
    {
        QByteArray result_name;
        int result = -1;
        int evidence = -1;
    };

    void open(const database_copy &copy, const sqlite_statement &row);
    void read_custom_properties();
    bool advance();
    void describe(const sqlite_statement &row);
    void describe_differences(const sqlite_statement &row);
    void describe_address();
    void describe_wal();

    std::unique_ptr<sqlite_database> opened;
    std::unique_ptr<sqlite_statement> rows; ///< none: nothing can be read, or not any more
    const vendor_list &vendors;
    preferences_names names;
    qint64 may_pass_over;
    bool has_wal;
    bool reads_counters_alone;
    QHash<qint64, row_in_log> wal_changes;
    QSet<QByteArray> left_out_columns; ///< of the result: those that the plug-in leaves empty for integers
    column_pair uuid;
    std::vector<column_pair> pairs;
    std::vector<std::pair<cell host_values::*, int>> columns; ///< of the evidence, where it has them
    int address_column = -1;
    QHash<QByteArray, QByteArray> custom_properties; ///< by UUID
    // Of the current row:
    QByteArray properties; ///< null: none
    QByteArray differs;
    QByteArray left_out;
    QByteArray vendor;
    QByteArray preferences_name; ///< null: none
    row_place known_place;
};

#endif
