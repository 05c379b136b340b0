// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_PAGE_COLUMN_H
#define HOST_REPORT_PAGE_PAGE_COLUMN_H

#include "host/text/cell.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>

#include <vector>

/**
 * The values of one column of a page's table, as the page shows them and in few bytes: different values and the place
 * of each row's among them, or one text for all rows where nearly every row has its own.
 */
class page_column
{
public:
    /** The first rows are kept as they are, for readers without script. */
    static constexpr qsizetype rows_without_script = 200;

    void add(const cell &value);

    qsizetype size() const
    {
        return count;
    }
    /** Whether some row has a value. */
    bool is_filled() const
    {
        return has_value;
    }
    /** Whether all values that are there are numbers. */
    bool is_number() const
    {
        return has_value && !has_text;
    }

    /** The value of one of the first rows, as the page shows it; a null array for NULL. */
    QByteArray shown(qsizetype row) const
    {
        return first_rows.value(row);
    }

    /** Whether every row has the same value in the other column. */
    bool is_same_as(const page_column &other) const;

    /** The members of a JSON object; script/column.js reads them: "text" or "values" and "rows", or "same". */
    QByteArray json() const;

private:
    qsizetype place_of(const QByteArray &value);
    QByteArrayList values_of_rows() const;
    void keep_all();

    qsizetype count = 0;
    bool has_value = false;
    bool has_text = false;
    QByteArrayList first_rows;
    QByteArrayList different;
    QHash<QByteArray, qsizetype> known;
    std::vector<quint16> places; ///< of each row among the different values
    QByteArray all;              ///< of all rows, when there are too many different ones; nothing else is filled then
};

#endif
