// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/report_row.h"

#include "host/case/result_database.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/report/reading/row_ranks.h"
#include "host/report/reading/wal_change.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

bool has_table(const result_database &result, const QString &table)
{
    return result.tables().contains(table);
}

QString result_file(const report_case &the_case, const report_source &source)
{
    return the_case.layout.source(source.record.number).result_database();
}

QString problem_text(const report_case &the_case, const report_source &source, const host_error &error)
{
    const QString file = result_file(the_case, source);
    return error.message().replace(file, the_case.layout.source(source.record.number).relative_to_case(file));
}

QStringList columns_of_source(const report_case &the_case, const report_source &source, const QString &table)
{
    QStringList names;
    const QString file = result_file(the_case, source);
    if (source.is_locked || !path_exists(file)) // which is said with the rows
        return names;
    const result_database result(file);
    if (!has_table(result, table))
        return names;
    const sqlite_statement statement = result.rows(table);
    for (int column = 0; column < statement.column_count(); ++column)
        names.append(statement.column_name(column));
    return names;
}

/** Ranks are known when all rows have been seen: the first reading of a table goes over it twice. */
const table_ranks &ranks_of_table(const report_case &the_case, const report_source &source, const QString &table,
                                  const result_database &result)
{
    const auto known = source.ranks->constFind(table);
    if (known != source.ranks->cend())
        return *known;
    table_ranks ranks;
    sqlite_statement row = result.rows(table);
    if (row.column_named("last_seen_time"_L1) >= 0) {
        const std::unique_ptr<row_reading> host = open_row_reading(the_case, source, table, row,
                                                                   reading_depth::counters);
        while (row.next()) {
            host->next(row);
            const counter_pair counters = counters_of(row, host->values());
            ranks.seen.add(counters.seen);
            ranks.connected.add(counters.connected);
        }
        ranks.problem = host->problem();
    }
    const QString problem = for_each_wal_change(the_case, source, [&](const wal_change &change) {
        if (change.change != "added" || change.table != table.toUtf8())
            return;
        const counter_pair counters = change.counters_after();
        ranks.seen.add(counters.seen);
        ranks.connected.add(counters.connected);
    });
    if (ranks.problem.isEmpty())
        ranks.problem = problem;
    ranks.seen.sort();
    ranks.connected.sort();
    return *source.ranks->insert(table, ranks);
}

/** How many rows the case's records say that the table has. */
std::optional<qint64> rows_expected(const report_source &source, const QString &table)
{
    for (const table_rows &rows : source.record.rows) {
        if (rows.table == table)
            return rows.stored;
    }
    return {};
}

/** Those on the row, and on its device by any of the row's own names for it. */
notes_of_one notes_on(const report_case &the_case, const report_source &source, const QString &table,
                      const sqlite_statement &row, const host_values &host)
{
    const auto bytes_in = [&row](QLatin1StringView name) {
        const int column = row.column_named(name);
        return column < 0 ? QByteArray() : row.bytes(column).toByteArray();
    };
    const int number = row.column_named("INT"_L1);
    notes_of_one notes = the_case.notes->of_device({bytes_in("uuid"_L1), bytes_in("sf_device_id"_L1),
                                                    bytes_in("address"_L1), bytes_in("device_address"_L1),
                                                    host.resolved_address.bytes.toByteArray()});
    if (number >= 0)
        add_notes(notes, the_case.notes->of_row({source.record.number, table, row.integer(number)}));
    return notes;
}

/** Throws host_error and sqlite_error. */
void read_result(const report_case &the_case, const report_source &source, const QString &table,
                 const std::function<void(const report_row &row)> &take, reading_depth depth, table_reading &reading)
{
    const result_database result(result_file(the_case, source));
    if (!has_table(result, table))
        return;
    const table_ranks &ranks = ranks_of_table(the_case, source, table, result);
    sqlite_statement row = result.rows(table);
    const std::unique_ptr<row_reading> host = open_row_reading(the_case, source, table, row, depth);
    const QByteArray utf8_table = table.toUtf8();
    while (row.next()) {
        host->next(row);
        const counter_pair counters = counters_of(row, host->values());
        report_row given{source,
                         table,
                         row,
                         host->values(),
                         utf8_table,
                         ranks.seen.rank_of(counters.seen),
                         ranks.connected.rank_of(counters.connected),
                         counter_readings(counters.seen)};
        if (!the_case.notes->is_empty()) {
            given.notes = notes_on(the_case, source, table, row, host->values());
            given.marks = note_marks(given.notes);
        }
        take(given);
        ++reading.rows;
    }
    reading.problem = host->problem().isEmpty() ? ranks.problem : host->problem();
}

} // namespace

column_names result_columns(const report_case &the_case, const QString &table)
{
    column_names columns;
    for (const report_source &source : the_case.sources) {
        try {
            const QStringList own = columns_of_source(the_case, source, table);
            std::copy_if(own.cbegin(), own.cend(), std::back_inserter(columns.names),
                         [&columns](const QString &name) { return !columns.names.contains(name); });
        } catch (const host_error &error) {
            columns.problems.append(source.problem_text(problem_text(the_case, source, error)));
        }
    }
    return columns;
}

table_reading read_rows(const report_case &the_case, const report_source &source, const QString &table,
                        const std::function<void(const report_row &row)> &take, reading_depth depth)
{
    table_reading reading;
    if (source.is_locked)
        return reading;
    if (!path_exists(result_file(the_case, source))) {
        if (!source.record.result_path.isEmpty()) // else the source's status says why
            reading.problem = u"its result database is missing: "_s + source.record.result_path;
        return reading;
    }
    try {
        read_result(the_case, source, table, take, depth, reading);
    } catch (const host_error &error) {
        reading.problem = problem_text(the_case, source, error);
    } catch (const sqlite_error &error) {
        reading.problem = u"the result table "_s + table + u" cannot be read to its end: "_s + error.message();
    }
    const std::optional<qint64> expected = rows_expected(source, table);
    if (reading.problem.isEmpty() && expected && *expected != reading.rows)
        reading.problem = QString::number(reading.rows) + u" rows of "_s + table
                          + u" could be read, the case's record says "_s + QString::number(*expected);
    return reading;
}

counted_rows row_count(const report_case &the_case)
{
    counted_rows counted;
    for (const report_source &source : the_case.sources) {
        try {
            if (source.is_locked || !path_exists(result_file(the_case, source))) // which is said with the rows
                continue;
            const result_database result(result_file(the_case, source));
            const QStringList tables = result.tables();
            for (const QString &table : tables)
                counted.rows += result.row_count(table);
        } catch (const host_error &error) {
            counted.problems.append(source.problem_text(problem_text(the_case, source, error)));
        }
    }
    return counted;
}
