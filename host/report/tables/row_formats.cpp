// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/row_formats.h"

#include "host/report/tables/json_lines.h"

#include <memory>

separated_form form_of(const program_format &format, const cell_options &options)
{
    return {format.separator, options.is_raw, options.has_mark};
}

row_writer make_row_writer(const program_format &format, const cell_options &options, const QStringList &columns,
                           const QString &table, const byte_sink &sink, changed_cells &changes)
{
    if (format.separator == 0) {
        const auto json = std::make_shared<json_rows>();
        return [json, sink](const report_row &row) { sink(json->line(row)); };
    }
    const auto cells = std::make_shared<separated_rows>(sink, table + format.suffix, form_of(format, options), columns,
                                                        changes);
    return [cells](const report_row &row) { cells->add(row); };
}
