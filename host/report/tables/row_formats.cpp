// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/row_formats.h"

#include "host/report/tables/json_lines.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

/** The columns of a table in all sources: those of the first source in their order, others' behind. */
QStringList all_columns(const report_case &that_case, const QString &table)
{
    QStringList columns;
    for (const report_source &source : that_case.sources) {
        const QStringList own = result_columns(that_case, source, table);
        std::copy_if(own.cbegin(), own.cend(), std::back_inserter(columns),
                     [&columns](const QString &name) { return !columns.contains(name); });
    }
    return columns;
}

} // namespace

separated_form form_of(const program_format &format, const cell_options &options)
{
    return {format.separator, options.is_raw, options.has_mark};
}

row_writer make_row_writer(const program_format &format, const cell_options &options, const report_case &that_case,
                           const QString &table, const byte_sink &sink, changed_cells &changes)
{
    if (format.separator == 0) {
        const auto json = std::make_shared<json_lines>();
        return [json, sink](const report_row &row) { sink(json->line(row)); };
    }
    const auto cells = std::make_shared<separated_rows>(sink, table + format.suffix, form_of(format, options),
                                                        all_columns(that_case, table), changes);
    return [cells](const report_row &row) { cells->add(row); };
}
