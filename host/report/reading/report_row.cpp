// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/report_row.h"

#include "host/case/result_database.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

bool has_table(const result_database &result, const QString &table)
{
    return result.tables().contains(table);
}

QString result_file(const report_case &that_case, const report_source &source)
{
    return that_case.layout.source(source.record.number).result_database();
}

} // namespace

QStringList result_columns(const report_case &that_case, const report_source &source, const QString &table)
{
    QStringList names;
    if (source.is_locked)
        return names;
    try {
        const result_database result(result_file(that_case, source));
        if (!has_table(result, table))
            return names;
        const sqlite_statement statement = result.rows(table);
        for (int column = 0; column < statement.column_count(); ++column)
            names.append(statement.column_name(column));
    } catch (const host_error &) {
        // told with the rows
    }
    return names;
}

QStringList result_columns(const report_case &that_case, const QString &table)
{
    QStringList columns;
    for (const report_source &source : that_case.sources) {
        const QStringList own = result_columns(that_case, source, table);
        std::copy_if(own.cbegin(), own.cend(), std::back_inserter(columns),
                     [&columns](const QString &name) { return !columns.contains(name); });
    }
    return columns;
}

table_reading read_rows(const report_case &that_case, const report_source &source, const QString &table,
                        const std::function<void(const report_row &row)> &tell)
{
    table_reading reading;
    const QString file = result_file(that_case, source);
    if (source.is_locked)
        return reading;
    if (!path_exists(file)) {
        if (!source.record.result_path.isEmpty()) // else the source's status says why
            reading.problem = u"its result database is missing: "_s + source.record.result_path;
        return reading;
    }
    try {
        const result_database result(file);
        if (!has_table(result, table))
            return reading;
        sqlite_statement row = result.rows(table);
        const std::unique_ptr<host_reading> host = open_host_reading(that_case, source, table, row);
        const QByteArray utf8_table = table.toUtf8();
        while (row.next()) {
            host->next(row);
            tell({source, table, row, host->values(), utf8_table});
            ++reading.rows;
        }
        reading.problem = host->problem();
    } catch (const host_error &error) {
        const source_layout layout = that_case.layout.source(source.record.number);
        reading.problem = error.message().replace(file, layout.relative_to_case(file));
    } catch (const sqlite_error &error) {
        reading.problem = u"the result table "_s + table + u" cannot be read to its end: "_s + error.message();
    }
    return reading;
}

qint64 row_count(const report_case &that_case)
{
    qint64 count = 0;
    for (const report_source &source : that_case.sources) {
        try {
            if (source.is_locked)
                continue;
            const result_database result(result_file(that_case, source));
            const QStringList tables = result.tables();
            for (const QString &table : tables)
                count += result.row_count(table);
        } catch (const host_error &) {
            // told with the rows
        }
    }
    return count;
}
