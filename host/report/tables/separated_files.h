// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_SEPARATED_FILES_H
#define HOST_REPORT_TABLES_SEPARATED_FILES_H

#include "host/report/reading/row_columns.h"
#include "host/report/tables/separated_cell.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

/** How files of separated values are written. */
struct separated_form
{
    char separator = ',';
    bool is_raw = false;   ///< texts that look like formulas stay as they are
    bool has_mark = false; ///< a byte order mark stands in front
};

/** A cell that is not the value itself. */
struct changed_cell
{
    QString file;
    qint64 line = 0; ///< of the table, the header's being 1
    QString column;
    cell_change change = cell_change::none;
};

/** The cells of all files that were changed: all are counted, the first ones are named. */
struct changed_cells
{
    static constexpr qsizetype most_named = 1000;

    void add(const changed_cell &cell)
    {
        ++count;
        if (named.size() < most_named)
            named.append(cell);
    }

    qint64 count = 0;
    QList<changed_cell> named;
};

/** Takes the bytes of a file, piece by piece. */
using byte_sink = std::function<void(QByteArrayView bytes)>;

/** A file of separated values: RFC 4180, lines end with CRLF. */
class separated_file
{
public:
    /** @p name is for @p changes. The header goes to @p sink at once. */
    separated_file(const byte_sink &sink, const QString &name, const separated_form &form,
                   const QList<report_column> &columns, changed_cells &changes);

    /** @p cells are in the order of the columns. */
    void add(const line_cells &cells);

private:
    void add_cell(const separated_cell &cell);
    void end_line();

    byte_sink take;
    QString file_name;
    separated_form form;
    QList<report_column> columns;
    changed_cells &changes;
    QByteArray line;
    qsizetype column = 0;
    bool is_first = true; ///< cell of the line
    qint64 line_number = 1;
};

/** devices.csv and its like: the rows of one result table of all sources. */
class separated_rows
{
public:
    /** @p result_columns are those of all sources, in order. */
    separated_rows(const byte_sink &sink, const QString &name, const separated_form &form,
                   const QStringList &result_columns, changed_cells &changes)
        : cells(result_columns)
        , file(sink, name, form, cells.columns(), changes)
    {
    }

    void add(const report_row &row)
    {
        file.add(cells.of(row));
    }

private:
    row_cells cells;
    separated_file file;
};

#endif
