// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_JSON_LINES_H
#define HOST_REPORT_TABLES_JSON_LINES_H

#include "host/report/reading/report_column.h"
#include "host/report/reading/row_columns.h"

#include <QByteArray>
#include <QList>

#include <array>
#include <memory>
#include <vector>

/** Makes objects of the lines of a list of columns; docs/report-formats.md describes them. */
class json_objects
{
public:
    explicit json_objects(const QList<report_column> &columns);

    /** Appends the object of a line, @p cells of which are in the order of the columns. */
    void append(QByteArray &json, const line_cells &cells) const;

    /** The object and a line end. */
    QByteArray line_of(const line_cells &cells) const
    {
        QByteArray json;
        append(json, cells);
        return json + '\n';
    }

private:
    struct member
    {
        QByteArray name; ///< "rowid": with its quotation marks and colon
        std::size_t place;
        column_use use;
        bool is_json;
    };

    void append_members(QByteArray &json, const std::vector<member> &members, const line_cells &cells) const;

    static constexpr std::size_t group_count = 5;
    std::array<std::vector<member>, group_count> groups; ///< by column_group
};

/** Makes the lines of devices.jsonl and paired_devices.jsonl. */
class json_rows
{
public:
    /** One row, with its line end. Valid until the next call. */
    QByteArrayView line(const report_row &row);

private:
    void begin_source(const report_row &row);

    const report_source *source = nullptr; ///< that the objects below are of
    std::unique_ptr<row_cells> cells;
    std::unique_ptr<json_objects> objects;
    QByteArray json; ///< keeps its room from row to row
};

#endif
