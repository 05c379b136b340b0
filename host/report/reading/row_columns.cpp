// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/row_columns.h"

#include "host/report/reading/common_columns.h"
#include "host/report/reading/row_notes.h"

using namespace Qt::StringLiterals;

namespace {

template<cell host_values::*Value>
cell host_value(const report_row &row)
{
    return row.host.*Value;
}

/** Of which source and table a row is; where a file holds one table, no cell says which. */
const line_columns<report_row> &first_columns()
{
    static const line_columns<report_row> columns = source_columns<report_row>()
                                                    + line_columns<report_row>{
                                                        {{"table"_ba, column_group::source, column_use::members_only},
                                                         [](const report_row &row) {
                                                             return cell::of_text(row.utf8_table);
                                                         }}};
    return columns;
}

/** What stands behind the plug-in's columns. */
const line_columns<report_row> &last_columns()
{
    static const line_columns<report_row> columns = place_columns<report_row>() + host_columns() + rank_columns()
                                                    + note_columns<report_row>();
    return columns;
}

} // namespace

const line_columns<report_row> &host_columns()
{
    constexpr column_group host = column_group::host;
    using values = host_values;
    // clang-format off
    static const line_columns<report_row> columns{
        {{"resolved_address"_ba, host, {}, {}, "Resolved address"_L1,
          "ResolvedAddress of the database: the public address behind a random one"_L1}, host_value<&values::resolved_address>},
        {{"last_seen_time"_ba, host, {}, {}, "Last seen, counter"_L1,
          "LastSeenTime of the database: a counter of unknown origin, no date; 0 is never"_L1}, host_value<&values::last_seen_time>},
        {{"last_connection_time"_ba, host, {}, {}, "Last connection, counter"_L1,
          "LastConnectionTime of the database: a counter of unknown origin, no date; 0 is never"_L1}, host_value<&values::last_connection_time>},
        {{"name_origin"_ba, host, {}, {}, "Origin of the name"_L1,
          "NameOrigin of the database: a small integer of unknown meaning"_L1}, host_value<&values::name_origin>},
        {{"gatt_service_change_config"_ba, host, {}, {}, "GATT service change"_L1,
          "GATTServiceChangeConfig of the database: a small integer of unknown meaning"_L1}, host_value<&values::gatt_service_change_config>},
        {{"custom_properties"_ba, host, {}, {}, "Custom properties"_L1,
          "JSON of the table CustomProperties for the row's UUID"_L1}, host_value<&values::custom_properties>},
        {{"tags"_ba, host, {}, {}, "Tags"_L1,
          "Tags of the database"_L1}, host_value<&values::tags>},
        {{"icloud_identifier"_ba, host, {}, {}, "iCloud identifier"_L1,
          "iCloudIdentifier of the database, of devices that are not paired too"_L1}, host_value<&values::icloud_identifier>},
        {{"address_kind"_ba, host, {}, {}, "Kind of address"_L1,
          "public, or what the two highest bits of a random address say: static, resolvable, non-resolvable, reserved"_L1}, host_value<&values::address_kind>},
        {{"name"_ba, host, {}, {}, "Name in the evidence"_L1,
          "the name; of a line of a log whole, commas included, its vis(3) escapes decoded"_L1}, host_value<&values::name>},
        {{"rssi"_ba, host, {}, {}, "Signal strength"_L1,
          "RSSI of the line of the log"_L1}, host_value<&values::rssi>},
        {{"aid"_ba, host, {}, {}, "AID"_L1,
          "AID of the line of the log"_L1}, host_value<&values::aid>},
        {{"line_text"_ba, host, {}, {}, "Line of the log"_L1,
          "the line itself, without its line end"_L1}, host_value<&values::line_text>},
        {{"preferences_name"_ba, host, {}, {}, "Name in the preferences"_L1,
          "the name that the preferences list keeps for the public address, its own or the resolved one"_L1}, host_value<&values::preferences_name>},
        {{"vendor"_ba, host, {}, {}, "Vendor of the address"_L1,
          "who bought the range of the public address, its own or the resolved one, by the list given"_L1}, host_value<&values::vendor>},
        {{"differs"_ba, host, {}, {}, "Differs from the plug-in"_L1,
          "the columns of the result in which the evidence says something else"_L1}, host_value<&values::differs>},
        {{"left_out"_ba, host, {}, {}, "Left out by the plug-in"_L1,
          "the columns of the result that the plug-in leaves empty by design though the evidence holds a value"_L1}, host_value<&values::left_out>},
        {{"wal"_ba, host, {}, {}, "In the write-ahead log"_L1,
          "what the write-ahead log makes of the row: unchanged, changed or deleted; NULL where there is none, or it cannot be compared"_L1}, host_value<&values::wal>},
        {{"wal_values"_ba, host, {}, true, "Values with the log"_L1,
          "of a row that the write-ahead log changes, the columns of the evidence that are other ones there"_L1}, host_value<&values::wal_values>},
        {{"date"_ba, host, {}, {}, "Date of the line"_L1,
          "the date of a line whose form has year and zone, in ISO 8601"_L1}, host_value<&values::date>},
    };
    // clang-format on
    return columns;
}

const line_columns<report_row> &rank_columns()
{
    using group = column_group;
    using use = column_use;
    // clang-format off
    static const line_columns<report_row> columns{
        {{"rank_last_seen"_ba, group::line, {}, {}, "Rank, last seen"_L1,
          "the place of the counter among those of the table of the source as it is with its write-ahead log: 1 is the largest, equal ones share theirs; none of a row that the log deletes"_L1},
         [](const report_row &row) { return cell::of_integer(row.rank_last_seen); }},
        {{"rank_last_connection"_ba, group::line, {}, {}, "Rank, last connection"_L1,
          "the place of the counter among those of the table of the source as it is with its write-ahead log: 1 is the largest, equal ones share theirs; none of a row that the log deletes"_L1},
         [](const report_row &row) { return cell::of_integer(row.rank_last_connection); }},
        {{"last_seen_readings"_ba, group::line, use::everywhere, true, "Last seen, if it were a time"_L1,
          "the times that the counter would be, as far as they are plausible; it is not known to be one"_L1},
         [](const report_row &row) { return cell::of_text(row.last_seen_readings); }},
    };
    // clang-format on
    return columns;
}

row_cells::row_cells(const QStringList &result_columns)
    : names(result_columns)
    , list(columns_of(first_columns()))
{
    for (const QString &name : result_columns)
        list.append({name.toUtf8(), column_group::plugin});
    list += columns_of(last_columns());
}

void row_cells::begin_source(const report_row &row)
{
    source = &row.source;
    QStringList own;
    for (int column = 0; column < row.plugin.column_count(); ++column)
        own.append(row.plugin.column_name(column));
    places.clear();
    for (const QString &name : std::as_const(names))
        places.append(int(own.indexOf(name)));
}

const line_cells &row_cells::of(const report_row &row)
{
    if (source != &row.source)
        begin_source(row);
    cells.clear();
    append_cells(cells, first_columns(), row);
    for (const int place : std::as_const(places))
        cells.push_back(place < 0 ? cell() : row.plugin.value_of(place));
    append_cells(cells, last_columns(), row);
    return cells;
}
