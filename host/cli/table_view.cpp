// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/table_view.h"

#include "host/files/host_error.h"

#include <QLocale>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView null_mark = u"∅";
constexpr QStringView empty_mark = u"\"\"";

/** Columns that are the same in every row as a rule; they stand above the table when they are. */
constexpr QLatin1StringView common_columns[] = {"bookmark"_L1, "os_scheme_display"_L1, "source_count_name"_L1,
                                                "source_file"_L1};

/** A text whose last character is seen. */
terminal_text with_seen_end(const QString &text)
{
    return text.endsWith(u' ') ? text.chopped(1) + terminal_text::escape(U' ') : terminal_text(text);
}

/** A text whose first and last characters are seen, and which is no mark of ours. */
terminal_text text_cell(const QString &text)
{
    if (text.isEmpty())
        return empty_mark.toString();
    if (text == null_mark || text == empty_mark || text.front() == u' ')
        return terminal_text::escape(text.front().unicode()) + with_seen_end(text.sliced(1));
    return with_seen_end(text);
}

terminal_text cell_of(const sqlite_statement &row, int column)
{
    switch (row.column_type(column)) {
    case cell::type::null:
        return null_mark.toString();
    case cell::type::integer:
        return QString::number(row.integer(column));
    case cell::type::real:
        return QString::number(row.real(column), 'g', QLocale::FloatingPointShortest);
    case cell::type::text:
        return text_cell(row.text(column));
    case cell::type::blob:
        return u"x'"_s + QString::fromLatin1(row.bytes(column).toByteArray().toHex()) + u'\'';
    }
    return {};
}

bool is_number_or_null(cell::type type)
{
    return type != cell::type::text && type != cell::type::blob;
}

/** Goes through the rows of a table, at most @p limit of them. */
void for_each_row(const result_database &database, const QString &table, std::optional<qint64> limit,
                  const std::function<void(const sqlite_statement &row)> &look)
{
    sqlite_statement row = database.rows(table);
    try {
        for (qint64 i = 0; (!limit || i < *limit) && row.next(); ++i)
            look(row);
    } catch (const sqlite_error &error) {
        throw host_error(error.is_out_of_memory() ? error_kind::incomplete : error_kind::not_found,
                         u"the table "_s + table + u" cannot be read to its end: "_s + error.message());
    }
}

} // namespace

table_view::table_view(const result_database &result, const QString &table_name, std::optional<qint64> most_rows)
    : database(result)
    , table(table_name)
    , limit(most_rows)
{
    const sqlite_statement names = database.rows(table);
    for (int i = 0; i < names.column_count(); ++i) {
        seen_column named;
        named.name = names.column_name(i);
        columns.append(named);
    }
    for_each_row(database, table, limit, [this](const sqlite_statement &row) {
        for (int i = 0; i < columns.size(); ++i) {
            seen_column &seen = columns[i];
            const terminal_text cell = cell_of(row, i);
            const cell::type type = row.column_type(i);
            if (rows == 0)
                seen.first_cell = cell;
            seen.width = std::max(seen.width, cell.width());
            seen.is_same = seen.is_same && cell == seen.first_cell;
            seen.is_null = seen.is_null && type == cell::type::null;
            seen.is_number = seen.is_number && is_number_or_null(type);
        }
        ++rows;
    });
}

bool table_view::seen_column::stands_above() const
{
    return is_null
           || (is_same
               && std::find(std::begin(common_columns), std::end(common_columns), name.to_string())
                      != std::end(common_columns));
}

terminal_texts table_view::lines_above() const
{
    terminal_texts lines;
    terminal_texts nulls;
    for (const seen_column &column : columns) {
        if (column.is_null)
            nulls.append(column.name);
        else if (column.stands_above())
            lines.append(u"  "_s + column.name + u": "_s + column.first_cell);
    }
    const QString rows_meant = limit ? u"every row shown: "_s : u"every row: "_s;
    if (!lines.isEmpty())
        lines.prepend(u"In "_s + rows_meant.chopped(1));
    if (!nulls.isEmpty())
        lines.append(null_mark + u" in "_s + rows_meant + joined(nulls, u", "_s));
    return lines;
}

QList<int> table_view::columns_below() const
{
    QList<int> below;
    for (int i = 0; i < columns.size(); ++i) {
        if (!columns.at(i).stands_above())
            below.append(i);
    }
    return below;
}

void table_view::print(console &out, row_layout layout) const
{
    const QList<int> shown = columns_below();
    text_table form;
    for (const int i : shown)
        form.add_column(columns.at(i).name, columns.at(i).width, columns.at(i).is_number);
    const std::optional<qsizetype> room = out.columns();
    const bool is_too_wide = room && form.width() > *room;

    out.print_line(out.bold(table));
    out.print(lines_above());
    out.print_line({});
    if (layout == row_layout::records || (layout == row_layout::automatic && is_too_wide))
        print_records(out, shown);
    else
        print_table(out, form, shown);
}

void table_view::print_table(console &out, const text_table &form, const QList<int> &shown) const
{
    out.print(form.heading_lines());
    for_each_row(database, table, limit, [&](const sqlite_statement &row) {
        terminal_texts cells;
        for (const int i : shown)
            cells.append(cell_of(row, i));
        out.print_line(form.line(cells));
    });
}

void table_view::print_records(console &out, const QList<int> &shown) const
{
    qsizetype width = 0;
    for (const int i : shown)
        width = std::max(width, columns.at(i).name.width());
    qint64 number = 0;
    for_each_row(database, table, limit, [&](const sqlite_statement &row) {
        ++number;
        if (number > 1)
            out.print_line({});
        out.print_line(u"row "_s + QString::number(number));
        for (const int i : shown) {
            const terminal_text &name = columns.at(i).name;
            const QString gap(width - name.width() + 1, u' ');
            out.print_line(u"  "_s + name + u":"_s + gap + cell_of(row, i));
        }
    });
}
