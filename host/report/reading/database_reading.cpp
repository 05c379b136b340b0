// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/database_reading.h"

#include "host/devices/device_address.h"

#include <span>

using namespace Qt::StringLiterals;

namespace {

/** More than this no cache of devices ever holds; they are kept in memory. */
constexpr qint64 most_custom_properties = 100000;

/** Fields that are columns of the evidence, the two counters first. */
constexpr std::pair<cell host_values::*, QLatin1StringView> field_columns[] = {
    {&host_values::last_seen_time, "LastSeenTime"_L1},
    {&host_values::last_connection_time, "LastConnectionTime"_L1},
    {&host_values::resolved_address, "ResolvedAddress"_L1},
    {&host_values::name_origin, "NameOrigin"_L1},
    {&host_values::gatt_service_change_config, "GATTServiceChangeConfig"_L1},
    {&host_values::tags, "Tags"_L1},
    {&host_values::icloud_identifier, "iCloudIdentifier"_L1},
    {&host_values::name, "Name"_L1},
};
constexpr std::size_t counter_columns = 2;

/** Columns of the result, and those of the evidence that hold the same; of other devices the first five. */
constexpr std::pair<QLatin1StringView, QLatin1StringView> copied_columns[] = {
    {"uuid"_L1, "Uuid"_L1},
    {"device_name"_L1, "Name"_L1},
    {"address"_L1, "Address"_L1},
    {"last_seen_time"_L1, "LastSeenTime"_L1},
    {"last_connection_time"_L1, "LastConnectionTime"_L1},
    {"apple_tags"_L1, "Tags"_L1},
    {"icloud_identifier"_L1, "iCloudIdentifier"_L1},
};

/** The plug-in copies texts: a number and its text are the same, and NULL and an empty text are. */
bool is_same(const cell &one, const cell &two)
{
    if (one.kind == two.kind && one.kind == cell::type::integer)
        return one.integer == two.integer;
    if (one.kind == two.kind && one.kind == cell::type::text)
        return one.bytes == two.bytes;
    return text_of(one) == text_of(two);
}

} // namespace

database_reading::database_reading(const database_copy &copy, const sqlite_statement &row,
                                   const vendor_list &vendor_names, const preferences_names &known_names,
                                   reading_depth depth)
    : vendors(vendor_names)
    , names(known_names)
    , may_pass_over(copy.lost)
    , has_wal(copy.has_wal)
    , reads_counters_alone(depth == reading_depth::counters)
    , wal_changes(copy.wal_changes)
{
    problem_text = copy.problem;
    known_place.file = copy.path.toUtf8();
    known_place.table = QByteArray(copy.database.device_table.data());
    try {
        open(copy, row);
    } catch (const sqlite_error &error) {
        problem_text = copy.path + u": "_s + error.message();
        rows.reset();
    }
}

void database_reading::open(const database_copy &copy, const sqlite_statement &row)
{
    const macos_database &database = copy.database;
    opened = std::make_unique<sqlite_database>(copy.file, sqlite_database::access::main_file_alone);
    opened->distrust();
    if (!opened->has_table(database.device_table))
        return;
    if (!reads_counters_alone)
        read_custom_properties();
    rows = std::make_unique<sqlite_statement>(*opened, "SELECT rowid, * FROM "
                                                           + QByteArray(database.device_table.data())
                                                           + " NOT INDEXED ORDER BY 1");
    for (const auto &[value, name] :
         std::span(field_columns).first(reads_counters_alone ? counter_columns : std::size(field_columns))) {
        if (const int column = rows->column_named(name); column >= 0)
            columns.emplace_back(value, column);
    }
    address_column = rows->column_named("Address"_L1);
    const bool copies_all = &database != &other_devices_database;
    if (copies_all)
        left_out_columns = {"last_seen_time", "last_connection_time"};
    for (const auto &[result, evidence] : std::span(copied_columns).first(copies_all ? 7 : 5))
        pairs.push_back({QByteArray(result.data()), row.column_named(result), rows->column_named(evidence)});
    uuid = pairs.front();
}

void database_reading::read_custom_properties()
{
    if (!opened->has_table("CustomProperties"_L1))
        return;
    try {
        sqlite_statement statement(*opened, "SELECT Uuid, JSON FROM CustomProperties NOT INDEXED");
        while (statement.next()) {
            if (custom_properties.size() >= most_custom_properties) {
                problem_text = u"CustomProperties holds more rows than are read here"_s;
                return;
            }
            custom_properties.insert(statement.bytes(0).toByteArray(), statement.bytes(1).toByteArray());
        }
    } catch (const sqlite_error &error) {
        problem_text = u"CustomProperties: "_s + error.message();
    }
}

bool database_reading::advance()
{
    try {
        if (rows && rows->next())
            return true;
    } catch (const sqlite_error &error) {
        problem_text = QString::fromUtf8(known_place.file) + u": "_s + error.message();
    }
    rows.reset();
    return false;
}

void database_reading::next(const sqlite_statement &row)
{
    current = {};
    if (!advance())
        return;
    const auto is_this_row = [&] {
        return uuid.result < 0 || uuid.evidence < 0
               || is_same(row.value_of(uuid.result), rows->value_of(uuid.evidence));
    };
    while (may_pass_over > 0 && !is_this_row()) {
        --may_pass_over;
        if (!advance())
            return;
    }
    describe(row);
}

void database_reading::describe(const sqlite_statement &row)
{
    current.place = known_place;
    current.place.rowid = rows->integer(0);
    for (const auto &[value, column] : columns)
        current.*value = rows->value_of(column);
    describe_wal();
    if (reads_counters_alone)
        return;
    describe_differences(row);
    if (address_column >= 0)
        describe_address();
    if (uuid.evidence >= 0 && !custom_properties.isEmpty()) {
        properties = custom_properties.value(rows->value_of(uuid.evidence).bytes.toByteArray());
        current.custom_properties = cell::of_text_if_any(properties);
    }
}

void database_reading::describe_differences(const sqlite_statement &row)
{
    differs.clear();
    left_out.clear();
    for (const column_pair &pair : pairs) {
        const cell in_result = pair.result < 0 ? cell() : row.value_of(pair.result);
        const cell in_evidence = pair.evidence < 0 ? cell() : rows->value_of(pair.evidence);
        if (is_same(in_result, in_evidence))
            continue;
        const bool is_left_out = text_of(in_result).isEmpty() && in_evidence.kind == cell::type::integer
                                 && left_out_columns.contains(pair.result_name);
        QByteArray &list = is_left_out ? left_out : differs;
        list += (list.isEmpty() ? "" : ", ") + pair.result_name;
    }
    current.differs = cell::of_text_or_null(differs);
    current.left_out = cell::of_text_or_null(left_out);
}

void database_reading::describe_wal()
{
    static const QByteArray unchanged("unchanged");
    if (!has_wal)
        return;
    const auto change = wal_changes.constFind(current.place.rowid.value_or(-1));
    current.is_changed_by_log = change != wal_changes.cend();
    current.wal = cell::of_text(current.is_changed_by_log ? change->change : unchanged);
    if (!current.is_changed_by_log)
        return;
    current.wal_values = cell::of_text_or_null(change->values);
    current.with_log = change->counters;
}

void database_reading::describe_address()
{
    const QByteArrayView address = rows->value_of(address_column).bytes;
    const QByteArrayView resolved = current.resolved_address.bytes;
    if (const std::optional<device_address> parsed = parse_device_address(address))
        current.address_kind = cell::of_text(parsed->kind());
    vendor = vendors.vendor_of_first_public({address, resolved});
    current.vendor = cell::of_text_or_null(vendor);
    preferences_name = names.name_of({address, resolved});
    current.preferences_name = cell::of_text_if_any(preferences_name);
}
