// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_TEXT_TABLE_H
#define HOST_CLI_TEXT_TABLE_H

#include "host/text/terminal_text.h"

#include <QList>

/** The form of a table whose rows are printed one by one, aligned in columns by the width they take on a terminal. */
class text_table
{
public:
    /** Adds a column whose cells take at most @p width; its heading may take more. */
    void add_column(const terminal_text &heading, qsizetype width, bool is_right_aligned);

    /** The columns of a terminal that a line takes. A longer cell than any column only pushes its row on. */
    qsizetype width() const;

    /** The headings and a line below them. */
    terminal_texts heading_lines() const;

    /** A row. Nothing is cut. */
    terminal_text line(const terminal_texts &cells) const;

private:
    struct column_form
    {
        terminal_text heading;
        qsizetype width = 0;
        bool is_right_aligned = false;
    };
    QList<column_form> columns;
};

#endif
