// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_REPORT_COLUMN_H
#define HOST_REPORT_READING_REPORT_COLUMN_H

#include "host/text/cell.h"

#include <QByteArray>
#include <QLatin1StringView>
#include <QList>

#include <vector>

// What a report says of a row, a file or a device stands in lists of columns, one for each kind of line. All formats
// are loops over such a list: a further column is a further entry.

/** Where a column belongs. A JSON object has its members in this order, cells stand in the order of the list. */
enum class column_group {
    source,  ///< which source of the case
    locator, ///< where in the evidence: {"locator": {…}}, cells with host_ in front
    plugin,  ///< of the result: {"plugin": {…}}
    line,    ///< of the line itself
    host,    ///< the host's own reading: {"host": {…}}, cells with host_ in front
};

enum class column_use {
    everywhere,
    cells_only,   ///< no member of a JSON object
    members_only, ///< no cell
    table_places, ///< of a locator; left out of JSON where a line of a log is the place
    log_places,   ///< of a locator; left out of JSON where a line of a log is not the place
};

/** What there is to say of a column whatever stands in it. */
struct report_column
{
    QByteArray name; ///< UTF-8: a result may have any columns
    column_group group = column_group::line;
    column_use use = column_use::everywhere;
    bool is_json = false; ///< its texts are JSON: cells have them as they are, JSON Lines as the value that they are

    QLatin1StringView heading = {}; ///< for readers; empty: the name
    QLatin1StringView meaning = {}; ///< what it says, and what it does not prove; empty: nothing is said

    bool is_cell() const
    {
        return use != column_use::members_only;
    }

    /** How separated values and the page call it: "host_rowid". */
    QByteArray cell_name() const
    {
        const bool is_of_host = group == column_group::locator || group == column_group::host;
        return is_of_host ? "host_" + name : name;
    }
};

/** A column and how its value is found. The value is valid as long as the line. */
template<typename Line>
struct line_column
{
    report_column about;
    cell (*value)(const Line &line);
};

template<typename Line>
using line_columns = QList<line_column<Line>>;

template<typename Line>
QList<report_column> columns_of(const line_columns<Line> &list)
{
    QList<report_column> columns;
    for (const line_column<Line> &column : list)
        columns.append(column.about);
    return columns;
}

/** The values of a line, in the order of the list. */
using line_cells = std::vector<cell>;

template<typename Line>
void append_cells(line_cells &cells, const line_columns<Line> &list, const Line &line)
{
    for (const line_column<Line> &column : list)
        cells.push_back(column.value(line));
}

template<typename Line>
line_cells cells_of(const line_columns<Line> &list, const Line &line)
{
    line_cells cells;
    append_cells(cells, list, line);
    return cells;
}

#endif
