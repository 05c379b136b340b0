// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/report_table.h"

#include "host/files/host_error.h"

using namespace Qt::StringLiterals;

namespace {

void keep_source(report_case &that_case, qint64 number)
{
    that_case.sources.removeIf([number](const report_source &source) { return source.record.number != number; });
    if (that_case.sources.isEmpty())
        throw host_error(error_kind::refused, u"the case has no source "_s + QString::number(number));
}

} // namespace

QStringList tell_table(const table_request &request, const byte_sink &sink)
{
    report_case that_case = read_report_case(request.case_directory);
    if (request.source)
        keep_source(that_case, *request.source);
    QStringList shortcomings = that_case.shortcomings;
    changed_cells changes;
    const row_writer write = make_row_writer(request.format, {}, that_case, request.table, sink, changes);
    for (const report_source &source : std::as_const(that_case.sources)) {
        const table_reading reading = read_rows(that_case, source, request.table, write);
        if (!reading.problem.isEmpty())
            shortcomings.append(source.problem_text(reading.problem));
    }
    return shortcomings;
}
