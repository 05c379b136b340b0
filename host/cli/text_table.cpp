// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/text_table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype widest_column = 60;
constexpr QLatin1StringView column_gap("  ");

} // namespace

void text_table::add_column(const terminal_text &heading, qsizetype width, bool is_right_aligned)
{
    columns.append({.heading = heading,
                    .width = std::max(heading.width(), std::min(width, widest_column)),
                    .is_right_aligned = is_right_aligned});
}

qsizetype text_table::width() const
{
    qsizetype width = 0;
    for (const column_form &column : columns)
        width += column_gap.size() + column.width;
    return width;
}

terminal_texts text_table::heading_lines() const
{
    terminal_texts headings;
    terminal_texts rules;
    for (const column_form &column : columns) {
        headings.append(column.heading);
        rules.append(QString(column.width, u'─'));
    }
    return {line(headings), line(rules)};
}

terminal_text text_table::line(const terminal_texts &cells) const
{
    terminal_text result;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const column_form &column = columns.at(i);
        const bool is_last = i + 1 == columns.size();
        const terminal_text padding(QString(std::max<qsizetype>(0, column.width - cells.at(i).width()), u' '));
        result += column_gap;
        if (column.is_right_aligned)
            result += padding + cells.at(i);
        else
            result += is_last ? cells.at(i) : cells.at(i) + padding;
    }
    return result;
}
