// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_TEXT_TABLE_H
#define HOST_CLI_TEXT_TABLE_H

#include <QList>
#include <QString>
#include <QStringList>

/** Rows of texts that are safe for a terminal, aligned in columns by the width they take there. */
class text_table
{
public:
    explicit text_table(const QStringList &headings);

    /** One cell for each heading. */
    void add_row(const QStringList &cells);

    /** The cells of this column, and its heading, stand at its right edge. */
    void align_right(qsizetype column);

    /** The headings, a line below them, and the rows. Nothing is cut: a very long cell only pushes its row on. */
    QStringList lines() const;

private:
    QString line(const QStringList &cells) const;

    QStringList headings;
    QList<QStringList> rows;
    QList<qsizetype> widths;
    QList<bool> right_aligned;
};

#endif
