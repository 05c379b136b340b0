// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/separated_files.h"

separated_file::separated_file(const byte_sink &sink, const QString &name, const separated_form &file_form,
                               const QList<report_column> &all_columns, changed_cells &changed)
    : take(sink)
    , file_name(name)
    , form(file_form)
    , columns(all_columns)
    , changes(changed)
{
    if (form.has_mark)
        take("\xEF\xBB\xBF");
    for (; column < columns.size(); ++column) {
        if (columns.at(column).is_cell())
            add_cell(make_text_cell(columns.at(column).cell_name(), form.is_raw));
    }
    end_line();
}

void separated_file::add(const line_cells &cells)
{
    for (; column < columns.size(); ++column) {
        if (columns.at(column).is_cell())
            add_cell(make_cell(cells[std::size_t(column)], form.is_raw));
    }
    end_line();
}

void separated_file::add_cell(const separated_cell &cell)
{
    if (cell.change != cell_change::none)
        changes.add({file_name, line_number, QString::fromUtf8(columns.at(column).cell_name()), cell.change});
    if (!is_first)
        line.append(form.separator);
    is_first = false;
    append_quoted(line, cell.text, form.separator);
}

void separated_file::end_line()
{
    line.append("\r\n");
    take(line);
    line.resize(0);
    column = 0;
    is_first = true;
    ++line_number;
}
