// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/show_command.h"

#include "host/case/case_layout.h"
#include "host/case/result_database.h"
#include "host/cli/text_table.h"
#include "host/files/paths.h"
#include "host/files/terminal_text.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView null_mark = u"∅";
constexpr QStringView empty_mark = u"\"\"";

/** Columns that are the same in every row as a rule; they stand above the table when they are. */
constexpr QLatin1StringView common_columns[] = {"bookmark"_L1, "os_scheme_display"_L1, "source_count_name"_L1,
                                                "source_file"_L1};

/** One column of a result table with all its values, ready for the terminal. */
struct shown_column
{
    QString heading;
    QStringList cells;
    bool is_number = true; ///< all that is not NULL
};

/** A text whose first and last characters are seen, and which is no mark of ours. */
QString shown_text(const QString &text)
{
    if (text.isEmpty())
        return empty_mark.toString();
    QString shown = terminal_text(text);
    if (shown == null_mark || shown == empty_mark || shown.front() == u' ')
        shown = terminal_escape(shown.at(0).unicode()) + shown.sliced(1);
    if (shown.back() == u' ')
        shown = shown.chopped(1) + terminal_escape(U' ');
    return shown;
}

void add_cell(shown_column &column, const sqlite_statement &row, int index)
{
    switch (row.column_type(index)) {
    case sqlite_statement::type::null:
        column.cells.append(null_mark.toString());
        return;
    case sqlite_statement::type::integer:
        column.cells.append(QString::number(row.integer(index)));
        return;
    case sqlite_statement::type::real:
        column.cells.append(QString::number(row.real(index), 'g', QLocale::FloatingPointShortest));
        return;
    case sqlite_statement::type::text:
        column.cells.append(shown_text(row.text(index)));
        break;
    case sqlite_statement::type::blob:
        column.cells.append(u"x'"_s + QString::fromLatin1(row.bytes(index).toByteArray().toHex()) + u'\'');
        break;
    }
    column.is_number = false;
}

QList<shown_column> read_columns(const result_database &result, const QString &table)
{
    sqlite_statement row = result.rows(table);
    QList<shown_column> columns;
    for (int i = 0; i < row.column_count(); ++i)
        columns.append({terminal_text(row.column_name(i)), {}, true});
    try {
        while (row.next()) {
            for (int i = 0; i < row.column_count(); ++i)
                add_cell(columns[i], row, i);
        }
    } catch (const sqlite_error &error) {
        throw host_error(exit_code::input,
                         u"the table "_s + table + u" cannot be read to its end: "_s + error.message());
    }
    return columns;
}

bool is_same_in_every_row(const shown_column &column)
{
    return std::all_of(column.cells.cbegin(), column.cells.cend(),
                       [&column](const QString &cell) { return cell == column.cells.front(); });
}

bool stands_above(const shown_column &column)
{
    return is_same_in_every_row(column)
           && std::find(std::begin(common_columns), std::end(common_columns), column.heading)
                  != std::end(common_columns);
}

QStringList aligned_lines(const QList<shown_column> &columns)
{
    QStringList headings;
    for (const shown_column &column : columns)
        headings.append(column.heading);
    text_table table(headings);
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (columns.at(i).is_number)
            table.align_right(i);
    }
    for (qsizetype row = 0; row < columns.front().cells.size(); ++row) {
        QStringList cells;
        for (const shown_column &column : columns)
            cells.append(column.cells.at(row));
        table.add_row(cells);
    }
    return table.lines();
}

/** What is the same in every row, the rows, and which columns hold nothing. */
QStringList table_lines(const QList<shown_column> &columns)
{
    QStringList lines;
    QStringList empty;
    QList<shown_column> in_rows;
    for (const shown_column &column : columns) {
        if (is_same_in_every_row(column) && column.cells.front() == null_mark)
            empty.append(column.heading);
        else if (stands_above(column))
            lines.append(u"  "_s + column.heading + u": "_s + column.cells.front());
        else
            in_rows.append(column);
    }
    if (!lines.isEmpty())
        lines.prepend(u"In every row:"_s);
    if (!empty.isEmpty())
        lines << u"∅ in every row: "_s + empty.join(u", "_s);
    return lines << QString() << aligned_lines(in_rows);
}

QString row_count_line(const QString &table, qint64 rows)
{
    return table.leftJustified(14) + u"  "_s + QLocale(QLocale::English).toString(rows)
           + (rows == 1 ? u" row"_s : u" rows"_s);
}

} // namespace

exit_code run_show(const show_options &options, const console &out)
{
    const case_layout layout(absolute_path(options.case_directory, u"CASE"_s));
    const result_database result(layout.source(layout.source_numbers().value(0, 1)).result_database());
    QStringList counts;
    const QStringList tables = options.table.isEmpty() ? result.tables() : QStringList{options.table};
    for (const QString &table : tables) {
        const QList<shown_column> columns = read_columns(result, table);
        const qsizetype rows = columns.front().cells.size();
        counts.append(row_count_line(table, rows));
        if (rows == 0)
            continue;
        out.print({out.bold(table)});
        out.print(table_lines(columns));
        out.print({QString()});
    }
    out.print({u"∅ is NULL, \"\" an empty text; \\u{1b} stands for a character that is unseen or would act on the "
               "terminal, \\\\ for a backslash."_s,
               QString()});
    out.print(counts);
    return exit_code::done;
}
