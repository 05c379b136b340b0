// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/database_reading.h"

#include "host/report/reading/device_address.h"

#include <QLocale>

#include <span>

using namespace Qt::StringLiterals;

namespace {

using cell = cell;
using type = cell::type;

/** More than this no cache of devices ever holds; they are kept in memory. */
constexpr qint64 most_custom_properties = 100000;

/** Fields that are columns of the evidence. */
constexpr std::pair<host_field, QLatin1StringView> field_columns[] = {
    {host_field::resolved_address, "ResolvedAddress"_L1},
    {host_field::last_seen_time, "LastSeenTime"_L1},
    {host_field::last_connection_time, "LastConnectionTime"_L1},
    {host_field::name_origin, "NameOrigin"_L1},
    {host_field::gatt_service_change_config, "GATTServiceChangeConfig"_L1},
    {host_field::tags, "Tags"_L1},
    {host_field::icloud_identifier, "iCloudIdentifier"_L1},
    {host_field::name, "Name"_L1},
};

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

QByteArray text_of(const cell &value)
{
    switch (value.kind) {
    case type::integer:
        return QByteArray::number(value.integer);
    case type::real:
        return QByteArray::number(value.real, 'g', QLocale::FloatingPointShortest);
    default:
        return value.bytes.toByteArray();
    }
}

/** The plug-in copies texts: a number and its text are the same, and NULL and an empty text are. */
bool is_same(const cell &one, const cell &two)
{
    if (one.kind == two.kind && one.kind == type::integer)
        return one.integer == two.integer;
    if (one.kind == two.kind && one.kind == type::text)
        return one.bytes == two.bytes;
    return text_of(one) == text_of(two);
}

cell value_of_text(QByteArrayView text, bool is_there)
{
    cell result;
    if (is_there) {
        result.kind = type::text;
        result.bytes = text;
    }
    return result;
}

} // namespace

database_reading::database_reading(const database_copy &copy, const sqlite_statement &row,
                                   const vendor_list &vendor_names, const preferences_names &known_names)
    : vendors(vendor_names)
    , names(known_names)
    , may_pass_over(copy.lost)
{
    known_place.file = copy.path.toUtf8();
    known_place.table = QByteArray(copy.database.device_table.data());
    columns.fill(-1);
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
    read_custom_properties();
    rows = std::make_unique<sqlite_statement>(*opened, "SELECT rowid, * FROM "
                                                           + QByteArray(database.device_table.data())
                                                           + " NOT INDEXED ORDER BY 1");
    for (const auto &[field, name] : field_columns)
        columns[size_t(field)] = rows->column_named(name);
    address_column = rows->column_named("Address"_L1);
    const bool copies_all = &database != &other_devices_database;
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
    current_place = {};
    properties = {};
    differs = {};
    vendor = {};
    preferences_name = {};
    address_kind = {};
    if (!advance())
        return;
    const auto is_this_row = [&] {
        return uuid.result < 0 || uuid.evidence < 0
               || is_same(row.value_of(uuid.result), rows->value_of(uuid.evidence));
    };
    while (!is_this_row() && may_pass_over > 0) {
        --may_pass_over;
        if (!advance())
            return;
    }
    describe(row);
}

void database_reading::describe(const sqlite_statement &row)
{
    current_place = known_place;
    current_place.rowid = rows->integer(0);
    for (const column_pair &pair : pairs) {
        const cell in_result = pair.result < 0 ? cell() : row.value_of(pair.result);
        const cell in_evidence = pair.evidence < 0 ? cell() : rows->value_of(pair.evidence);
        if (!is_same(in_result, in_evidence))
            differs += (differs.isEmpty() ? "" : ", ") + pair.result_name;
    }
    if (address_column >= 0) {
        const cell address = rows->value_of(address_column);
        const std::optional<device_address> parsed = parse_device_address(address.bytes);
        if (parsed)
            address_kind = parsed->kind();
        const QByteArrayView resolved = value_of(host_field::resolved_address).bytes;
        vendor = vendors.vendor_of_first_public({address.bytes, resolved});
        preferences_name = names.name_of({address.bytes, resolved});
    }
    if (uuid.evidence >= 0 && !custom_properties.isEmpty())
        properties = custom_properties.value(rows->value_of(uuid.evidence).bytes.toByteArray());
}

cell database_reading::value_of(host_field field) const
{
    if (current_place.file.isEmpty())
        return {};
    switch (field) {
    case host_field::custom_properties:
        return value_of_text(properties, !properties.isNull());
    case host_field::address_kind:
        return value_of_text(QByteArrayView(address_kind.data(), address_kind.size()), !address_kind.isEmpty());
    case host_field::preferences_name:
        return value_of_text(preferences_name, !preferences_name.isNull());
    case host_field::vendor:
        return value_of_text(vendor, !vendor.isEmpty());
    case host_field::differs:
        return value_of_text(differs, !differs.isEmpty());
    default:
        return columns[size_t(field)] < 0 ? cell() : rows->value_of(columns[size_t(field)]);
    }
}
