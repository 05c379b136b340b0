// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/host_device_view.h"

#include "host/files/host_error.h"
#include "host/report/reading/host_device_line.h"
#include "host/text/count_text.h"
#include "host/text/utf8_text.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/** Raw members are left to programs; a terminal has room for what they say. */
bool is_shown(const report_column &column, const cell &value)
{
    const bool is_no_flag = column.name == "flag" && value.bytes == "false";
    return column.is_cell() && !value.is_null() && column.name != "raw" && !is_no_flag;
}

void print_device(const host_device_line &device, console &out)
{
    const line_columns<host_device_line> &columns = host_device_columns();
    for (const line_column<host_device_line> &column : columns) {
        const cell value = column.value(device);
        if (is_shown(column.about, value))
            out.print_line(u"  "_s + QString::fromLatin1(column.about.cell_name() + ": ").leftJustified(20)
                           + terminal_text(utf8_text(text_of(value))));
    }
}

} // namespace

exit_code show_host_devices(const show_options &options, console &out)
{
    if (!QFileInfo(options.place).isDir())
        throw host_error(error_kind::refused, u"--table: host_devices are of a case, not of a result database"_s);
    const report_case the_case = read_report_case(options.place);
    QStringList shortcomings = the_case.shortcomings;
    terminal_texts counts;
    for (const report_source &source : the_case.sources) {
        if (options.source && *options.source != source.record.number)
            continue;
        qint64 count = 0;
        qint64 shown = 0;
        const QString problem = for_each_host_device(the_case, source, [&](const host_device_line &device) {
            if (++count; options.most_rows && count > *options.most_rows)
                return;
            out.print_line(u"row "_s + QString::number(++shown));
            print_device(device, out);
            out.print_line({});
        });
        if (!problem.isEmpty())
            shortcomings.append(source.problem_text(problem));
        counts.append(source.name + u"  host_devices  "_s + rows_text(count)
                      + (count > shown ? u", "_s + count_text(shown) + u" shown"_s : QString()));
    }
    out.print(counts);
    for (const QString &text : std::as_const(shortcomings))
        out.warning(text);
    return shortcomings.isEmpty() ? exit_code::done : exit_code::partial;
}
