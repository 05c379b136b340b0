// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_SEPARATED_FILES_H
#define HOST_REPORT_TABLES_SEPARATED_FILES_H

#include "host/report/reading/report_row.h"
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
    /** @p name is for @p changes. */
    separated_file(const byte_sink &sink, const QString &name, const separated_form &form, const QStringList &columns,
                   changed_cells &changes);

    void add_text(QByteArrayView utf8);
    void add_value(const cell &value);
    void add_number(const std::optional<qint64> &number);
    void end_line();

private:
    void add_cell(const separated_cell &cell);

    byte_sink take;
    QString file_name;
    separated_form form;
    QStringList column_names;
    changed_cells &changes;
    QByteArray line;
    qsizetype column = 0;
    qint64 line_number = 1;
};

/** devices.csv and its like: the rows of one result table of all sources. */
class separated_rows
{
public:
    /** @p result_columns are those of all sources, in order. */
    separated_rows(const byte_sink &sink, const QString &name, const separated_form &form,
                   const QStringList &result_columns, changed_cells &changes);

    void add(const report_row &row);

private:
    QStringList columns; ///< of the result
    separated_file file;
    const report_source *source = nullptr; ///< that the places below are of
    QList<int> places;                     ///< of the columns in its result table; -1: it has none of that name
};

#endif
