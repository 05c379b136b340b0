// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/row_reading.h"

#include "host/files/paths.h"
#include "host/report/reading/database_reading.h"
#include "host/report/reading/log_reading.h"
#include "host/report/reading/wal_change.h"
#include "host/source/macos_databases.h"
#include "host/source/source_kinds.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** Where the host has kept nothing to read. */
class no_reading : public row_reading
{
public:
    void next(const sqlite_statement &) override
    {
    }
};

const table_rows *counts_of(const source_record &record, const QString &table)
{
    const auto found = std::find_if(record.rows.cbegin(), record.rows.cend(),
                                    [&table](const table_rows &rows) { return rows.table == table; });
    return found == record.rows.cend() ? nullptr : &*found;
}

row_in_log row_in_log_of(const wal_change &change)
{
    return {change.change, change.changed_values(), change.counters_after()};
}

/** With what the records of the source say of it. */
database_copy copy_with_wal(const report_case &the_case, const report_source &source, database_copy copy)
{
    const QString table = copy.database.result_table;
    if (const table_rows *counts = counts_of(source.record, table))
        copy.lost = counts->found.value_or(0) - counts->stored.value_or(0);
    copy.has_wal = source.record.wal.toObject().value(table).isObject();
    if (!copy.has_wal)
        return copy;
    copy.problem = for_each_wal_change(the_case, source, [&](const wal_change &change) {
        if (change.table == table.toUtf8() && change.change != "added" && change.place().rowid)
            copy.wal_changes.insert(*change.place().rowid, row_in_log_of(change));
    });
    return copy;
}

} // namespace

std::unique_ptr<row_reading> open_row_reading(const report_case &the_case, const report_source &source,
                                              const QString &table, const sqlite_statement &row, reading_depth depth)
{
    const source_layout layout = the_case.layout.source(source.record.number);
    const bool has_counters = source.record.type != ios_uid_kind.name;
    if (depth == reading_depth::counters && !has_counters)
        return std::make_unique<no_reading>();
    if (!has_counters && path_exists(layout.ios_lines())) {
        const QString log = source.record.evidence.files.isEmpty() ? QString() : source.record.evidence.files[0].path;
        return std::make_unique<log_reading>(layout.ios_lines(), log, table, row, the_case.vendors);
    }
    for (const macos_database *database : macos_databases) {
        const QString path = path_in_source(*database);
        const QString copy = layout.evidence_folder() + u'/' + path;
        if (source.record.driven_as != macos_kind.name || table != database->result_table || !path_exists(copy))
            continue;
        return std::make_unique<database_reading>(copy_with_wal(the_case, source, {copy, path, *database}), row,
                                                  the_case.vendors, source.preferences, depth);
    }
    return std::make_unique<no_reading>();
}
