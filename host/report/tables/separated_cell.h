// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_SEPARATED_CELL_H
#define HOST_REPORT_TABLES_SEPARATED_CELL_H

#include "host/text/cell.h"

#include <QByteArray>
#include <QLatin1StringView>

/** What was done to a value so that it can stand in a cell. */
enum class cell_change {
    none,
    apostrophe, ///< put in front, since a spreadsheet would take the text for a formula
    hexadecimal ///< a blob, or a text that is no UTF-8, as x'00ff'
};

struct separated_cell
{
    QByteArray text; ///< not yet quoted
    cell_change change = cell_change::none;
};

/** NULL is an empty cell, as an empty text is. @p is_raw: texts get no apostrophe. */
separated_cell make_cell(const cell &value, bool is_raw);
separated_cell make_text_cell(QByteArrayView utf8, bool is_raw);

/**
 * Whether a spreadsheet may take the text for a formula: its first character, after blanks and unseen characters of any
 * kind, is one of = + - @, also full-width, or it starts with a tab or a line end.
 */
bool looks_like_formula(QByteArrayView utf8);

/** The cell as RFC 4180 wants it: in quotes where it holds the separator, a quote or a line end. */
void append_quoted(QByteArray &line, QByteArrayView cell, char separator);

#endif
