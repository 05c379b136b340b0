// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/report_table.h"

#include "host/files/host_error.h"
#include "host/report/tables/case_lists.h"
#include "host/report/tables/json_lines.h"

using namespace Qt::StringLiterals;

namespace {

void keep_source(report_case &the_case, qint64 number)
{
    the_case.sources.removeIf([number](const report_source &source) { return source.record.number != number; });
    if (the_case.sources.isEmpty())
        throw host_error(error_kind::refused, u"the case has no source "_s + QString::number(number));
}

QStringList write_list(const case_list &list, const program_format &format, const byte_sink &sink)
{
    changed_cells changes;
    if (format.separator == 0) {
        const json_objects objects(list.columns);
        return list.read([&](const line_cells &cells) { sink(objects.line_of(cells)); });
    }
    separated_file file(sink, list.name + format.suffix, form_of(format, {}), list.columns, changes);
    return list.read([&file](const line_cells &cells) { file.add(cells); });
}

} // namespace

QStringList write_table(const table_request &request, const byte_sink &sink)
{
    report_case the_case = read_report_case(request.case_directory);
    if (request.source)
        keep_source(the_case, *request.source);
    QStringList shortcomings = the_case.shortcomings;
    changed_cells changes;
    for (const case_list &list : case_lists(the_case)) {
        if (list.name == request.table)
            return shortcomings + write_list(list, request.format, sink);
    }
    const column_names columns = result_columns(the_case, request.table);
    shortcomings += columns.problems;
    const row_writer write = make_row_writer(request.format, {}, columns.names, request.table, sink, changes);
    for (const report_source &source : std::as_const(the_case.sources)) {
        const table_reading reading = read_rows(the_case, source, request.table, write);
        if (!reading.problem.isEmpty())
            shortcomings.append(source.problem_text(reading.problem));
    }
    return shortcomings;
}
