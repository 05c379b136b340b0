// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/separated_files.h"

using namespace Qt::StringLiterals;

namespace {

QStringList with_host_columns(const QStringList &result_columns)
{
    QStringList columns{u"source"_s, u"source_name"_s};
    columns += result_columns;
    columns << u"host_file"_s << u"host_table"_s << u"host_rowid"_s << u"host_line"_s << u"host_offset"_s;
    for (const QLatin1StringView name : host_field_names)
        columns.append(u"host_"_s + name);
    return columns;
}

} // namespace

separated_file::separated_file(const byte_sink &sink, const QString &name, const separated_form &file_form,
                               const QStringList &columns, changed_cells &changed)
    : take(sink)
    , file_name(name)
    , form(file_form)
    , column_names(columns)
    , changes(changed)
{
    if (form.has_mark)
        take("\xEF\xBB\xBF");
    for (const QString &text : columns)
        add_text(text.toUtf8());
    end_line();
}

void separated_file::add_text(QByteArrayView utf8)
{
    add_cell(make_text_cell(utf8, form.is_raw));
}

void separated_file::add_value(const cell &value)
{
    add_cell(make_cell(value, form.is_raw));
}

void separated_file::add_number(const std::optional<qint64> &number)
{
    add_cell({number ? QByteArray::number(*number) : QByteArray(), cell_change::none});
}

void separated_file::add_cell(const separated_cell &cell)
{
    if (cell.change != cell_change::none)
        changes.add({file_name, line_number, column_names.value(column), cell.change});
    if (column > 0)
        line.append(form.separator);
    append_quoted(line, cell.text, form.separator);
    ++column;
}

void separated_file::end_line()
{
    line.append("\r\n");
    take(line);
    line.resize(0);
    column = 0;
    ++line_number;
}

separated_rows::separated_rows(const byte_sink &sink, const QString &name, const separated_form &form,
                               const QStringList &result_columns, changed_cells &changes)
    : columns(result_columns)
    , file(sink, name, form, with_host_columns(result_columns), changes)
{
}

void separated_rows::add(const report_row &row)
{
    if (source != &row.source) {
        source = &row.source;
        QStringList own;
        for (int column = 0; column < row.plugin.column_count(); ++column)
            own.append(row.plugin.column_name(column));
        places.clear();
        for (const QString &column : std::as_const(columns))
            places.append(int(own.indexOf(column)));
    }
    file.add_number(row.source.record.number);
    file.add_text(row.source.name.toUtf8());
    for (const int place : std::as_const(places))
        file.add_value(place < 0 ? cell() : row.plugin.value_of(place));
    const row_place &place = row.host.place();
    file.add_text(place.file);
    file.add_text(place.table);
    file.add_number(place.rowid);
    file.add_number(place.line);
    file.add_number(place.offset);
    for (std::size_t field = 0; field < host_field_names.size(); ++field)
        file.add_value(row.host.value_of(host_field(field)));
    file.end_line();
}
