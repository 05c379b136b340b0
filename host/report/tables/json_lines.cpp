// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/json_lines.h"

#include "host/text/json_text.h"

#include <algorithm>
#include <string_view>

namespace {

/** What a group's members stand in; empty: in the object itself. In the order of column_group. */
constexpr std::string_view nested_in[] = {"", "\"locator\":{", "\"plugin\":{", "", "\"host\":{"};

/** The use of those columns of a locator that this line has not. */
template<typename Members>
column_use left_out(const Members &members, const line_cells &cells)
{
    const bool is_log = std::any_of(members.begin(), members.end(), [&cells](const auto &member) {
        return member.use == column_use::log_places && !cells[member.place].is_null();
    });
    return is_log ? column_use::table_places : column_use::log_places;
}

} // namespace

json_objects::json_objects(const QList<report_column> &columns)
{
    for (qsizetype place = 0; place < columns.size(); ++place) {
        const report_column &column = columns.at(place);
        if (column.use == column_use::cells_only)
            continue;
        QByteArray name;
        append_json_bytes(name, column.name);
        groups[std::size_t(column.group)].push_back({name + ':', std::size_t(place), column.use, column.is_json});
    }
}

void json_objects::append(QByteArray &json, const line_cells &cells) const
{
    json.append('{');
    for (std::size_t group = 0; group < group_count; ++group) {
        if (groups[group].empty())
            continue;
        if (json.back() != '{')
            json.append(',');
        json.append(nested_in[group].data(), qsizetype(nested_in[group].size()));
        append_members(json, groups[group], cells);
        if (!nested_in[group].empty())
            json.append('}');
    }
    json.append('}');
}

void json_objects::append_members(QByteArray &json, const std::vector<member> &members, const line_cells &cells) const
{
    const column_use without = left_out(members, cells);
    bool is_first = true;
    for (const member &one : members) {
        if (one.use == without)
            continue;
        if (!is_first)
            json.append(',');
        is_first = false;
        json.append(one.name);
        const cell &value = cells[one.place];
        if (one.is_json && !value.is_null())
            json.append(value.bytes);
        else
            append_json_value(json, value);
    }
}

void json_rows::begin_source(const report_row &row)
{
    source = &row.source;
    QStringList own;
    for (int column = 0; column < row.plugin.column_count(); ++column)
        own.append(row.plugin.column_name(column));
    cells = std::make_unique<row_cells>(own);
    objects = std::make_unique<json_objects>(cells->columns());
}

QByteArrayView json_rows::line(const report_row &row)
{
    if (source != &row.source)
        begin_source(row);
    json.resize(0);
    objects->append(json, cells->of(row));
    json.append('\n');
    return json;
}
