// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/text_table.h"

#include "host/files/terminal_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype widest_column = 60;
constexpr QLatin1StringView column_gap("  ");

} // namespace

text_table::text_table(const QStringList &texts)
    : headings(texts)
    , right_aligned(texts.size(), false)
{
    for (const QString &heading : texts)
        widths.append(terminal_width(heading));
}

void text_table::add_row(const QStringList &cells)
{
    for (qsizetype i = 0; i < cells.size(); ++i)
        widths[i] = std::clamp(terminal_width(cells.at(i)), widths.at(i), std::max(widths.at(i), widest_column));
    rows.append(cells);
}

void text_table::align_right(qsizetype column)
{
    right_aligned[column] = true;
}

QStringList text_table::lines() const
{
    QStringList rules;
    for (const qsizetype width : widths)
        rules.append(QString(width, u'─'));

    QStringList result{line(headings), line(rules)};
    for (const QStringList &row : rows)
        result.append(line(row));
    return result;
}

QString text_table::line(const QStringList &cells) const
{
    QString result;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        const bool is_last = i + 1 == cells.size();
        const QString padding(std::max<qsizetype>(0, widths.at(i) - terminal_width(cells.at(i))), u' ');
        result += column_gap;
        result += right_aligned.at(i) ? padding + cells.at(i) : cells.at(i) + (is_last ? QString() : padding);
    }
    return result;
}
