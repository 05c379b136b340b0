// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_TABLE_VIEW_H
#define HOST_CLI_TABLE_VIEW_H

#include "host/case/result_database.h"
#include "host/cli/console.h"
#include "host/cli/text_table.h"

#include <QList>
#include <QString>

#include <optional>

/** How rows stand on the terminal. */
enum class row_layout {
    automatic, ///< as a table, unless the terminal is too narrow for it
    table,     ///< a line for each row
    records,   ///< a block for each row with a line for each value
};

/**
 * One result table for the terminal. Its rows are read twice, once to learn the columns' widths and what is the same
 * in every row, and once to print them, so that they take no memory. Throws host_error (not_found).
 */
class table_view
{
public:
    /** Reads the rows, at most @p most_rows of them, for the first time. @p result outlives this object. */
    table_view(const result_database &result, const QString &table_name, std::optional<qint64> most_rows);

    /** The rows that print() prints. */
    qint64 row_count() const
    {
        return rows;
    }

    void print(console &out, row_layout layout) const;

private:
    struct seen_column
    {
        terminal_text name;
        terminal_text first_cell;
        qsizetype width = 0; ///< of its widest cell
        bool is_same = true; ///< in every row
        bool is_null = true;
        bool is_number = true; ///< whatever is not NULL

        bool stands_above() const;
    };

    terminal_texts lines_above() const;
    QList<int> columns_below() const;
    void print_table(console &out, const text_table &form, const QList<int> &shown) const;
    void print_records(console &out, const QList<int> &shown) const;

    const result_database &database;
    QString table;
    std::optional<qint64> limit;
    QList<seen_column> columns;
    qint64 rows = 0;
};

#endif
