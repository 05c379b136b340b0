// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/join/device_join.h"

#include "host/case/result_tables.h"
#include "host/devices/device_address.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** The first of these columns of the result that holds anything. */
QByteArray text_in(const sqlite_statement &row, std::initializer_list<QLatin1StringView> names)
{
    for (const QLatin1StringView name : names) {
        const int column = row.column_named(name);
        if (column >= 0 && !row.bytes(column).isEmpty())
            return row.bytes(column).toByteArray();
    }
    return {};
}

/** An identifier that says something: neither empty nor all zeros. */
QByteArray normalised_identifier(QByteArrayView text)
{
    const QByteArray identifier = text.trimmed().toByteArray().toUpper();
    const bool says_something = std::any_of(identifier.cbegin(), identifier.cend(),
                                            [](char byte) { return byte != '0' && byte != '-'; });
    return says_something ? identifier : QByteArray();
}

template<typename Value>
void insert_once(QList<Value> &sorted, const Value &value)
{
    const auto place = std::lower_bound(sorted.begin(), sorted.end(), value);
    if (place == sorted.end() || !(*place == value))
        sorted.insert(place, value);
}

QByteArray identifier_of(const join_key &key)
{
    return (key.what == join_key::kind::public_address ? 'A' : 'I') + key.value;
}

/** A UUID means something in its own source alone. */
QByteArray identifier_of_uuid(const device_appearance &row)
{
    return 'U' + QByteArray::number(row.source) + ' ' + row.uuid;
}

/** What names the device in its own source alone; empty: nothing does. */
QByteArray name_in_source(const device_appearance &row)
{
    return row.uuid.isEmpty() ? row.local_name : row.uuid;
}

} // namespace

QLatin1StringView join_key_name(join_key::kind kind)
{
    return kind == join_key::kind::public_address ? "public_address"_L1 : "icloud_identifier"_L1;
}

device_appearance appearance_of(const report_row &row, int source)
{
    device_appearance result;
    result.source = source;
    result.table = row.table;
    result.place = row.host.place;
    result.uuid = text_in(row.plugin, {"uuid"_L1, "sf_device_id"_L1}).trimmed().toUpper();
    result.name = text_in(row.plugin, {"device_name"_L1});
    result.address = text_in(row.plugin, {"address"_L1, "device_address"_L1});
    result.resolved_address = row.host.resolved_address.bytes.toByteArray();
    result.host_name = row.host.name.bytes == result.name ? result.name : row.host.name.bytes.toByteArray();
    result.preferences_name = row.host.preferences_name.bytes.toByteArray();
    result.vendor = row.host.vendor.bytes.toByteArray();
    // The name of a kind is a literal: no row needs one of its own.
    result.address_kind = QByteArray::fromRawData(row.host.address_kind.bytes.data(),
                                                  row.host.address_kind.bytes.size());
    result.icloud_identifier = row.host.icloud_identifier.bytes.toByteArray();
    if (result.icloud_identifier.isEmpty())
        result.icloud_identifier = text_in(row.plugin, {"icloud_identifier"_L1});
    result.is_paired = result.table == result_tables().last();
    result.is_deleted_by_log = row.host.wal.bytes == "deleted";
    result.notes = row.notes;
    add_keys(result);
    return result;
}

bool is_named(const device_appearance &appearance)
{
    constexpr QByteArrayView left_out_by_the_log("<private>");
    const auto is_name = [&](const QByteArray &text) { return !text.isEmpty() && text != left_out_by_the_log; };
    return is_name(appearance.host_name) || is_name(appearance.name) || is_name(appearance.preferences_name);
}

void add_keys(device_appearance &appearance)
{
    for (const QByteArray &text : {appearance.address, appearance.resolved_address}) {
        const std::optional<device_address> address = parse_device_address(text);
        if (address && address->joins_sources())
            appearance.keys.append({join_key::kind::public_address, address->bytes});
    }
    const QByteArray identifier = normalised_identifier(appearance.icloud_identifier);
    if (!identifier.isEmpty())
        appearance.keys.append({join_key::kind::icloud_identifier, identifier});
}

void number_shared(QList<joined_device> &devices)
{
    qint64 number = 0;
    for (joined_device &device : devices)
        device.shared_number = device.sources.size() > 1 ? ++number : 0;
}

qsizetype device_join::learn_identifier(const QByteArray &identifier, int source)
{
    const auto known = places.constFind(identifier);
    if (known == places.cend()) {
        const auto place = qsizetype(nodes.size());
        places.insert(identifier, place);
        nodes.push_back({place, source});
        return place;
    }
    node &found = nodes[size_t(*known)];
    if (found.source != source) {
        found.is_in_several = true;
        nodes[size_t(root_of(*known))].is_device_shared = true;
        is_one_shared = true;
    }
    return *known;
}

void device_join::learn(const device_appearance &row)
{
    if (row.keys.isEmpty())
        return; // at most it has a UUID, and one identifier joins nothing
    const qsizetype first = learn_identifier(identifier_of(row.keys.first()), row.source);
    for (const join_key &key : row.keys.sliced(1))
        join(first, learn_identifier(identifier_of(key), row.source));
    if (!row.uuid.isEmpty())
        join(first, learn_identifier(identifier_of_uuid(row), row.source));
}

qsizetype device_join::root_of(qsizetype place) const
{
    while (nodes[size_t(place)].parent != place) {
        qsizetype &parent = nodes[size_t(place)].parent;
        parent = nodes[size_t(parent)].parent; // halves the way for the next
        place = parent;
    }
    return place;
}

void device_join::join(qsizetype one, qsizetype two)
{
    const qsizetype first = root_of(one);
    const qsizetype second = root_of(two);
    const bool is_shared = nodes[size_t(first)].is_device_shared || nodes[size_t(second)].is_device_shared;
    nodes[size_t(second)].parent = first;
    nodes[size_t(first)].is_device_shared = is_shared;
}

/** -1: the row has no key, and no row with its UUID has one. */
qsizetype device_join::root_of(const device_appearance &row) const
{
    const QByteArray identifier = row.keys.isEmpty() ? identifier_of_uuid(row) : identifier_of(row.keys.first());
    const qsizetype place = places.value(identifier, -1);
    return place < 0 ? place : root_of(place);
}

QByteArray device_join::device_of(const device_appearance &row) const
{
    const qsizetype root = root_of(row);
    if (root >= 0)
        return 'D' + QByteArray::number(root);
    const QByteArray name = name_in_source(row);
    return name.isEmpty() ? name : 'S' + QByteArray::number(row.source) + ' ' + name;
}

bool device_join::is_shared(const device_appearance &row) const
{
    const qsizetype root = root_of(row);
    return root >= 0 && nodes[size_t(root)].is_device_shared;
}

bool device_join::is_in_several_sources(const join_key &key) const
{
    const qsizetype place = places.value(identifier_of(key), -1);
    return place >= 0 && nodes[size_t(place)].is_in_several;
}

qint64 &device_numbers::known_number(const device_appearance &row)
{
    const qsizetype group = join.group_of(row);
    if (group >= 0)
        return joined[group];
    if (row.source != source) {
        by_uuid.clear();
        by_other_name.clear();
        source = row.source;
    }
    const QByteArray name = name_in_source(row);
    const QUuid uuid = name.size() == 36 ? QUuid::fromString(QLatin1StringView(name)) : QUuid();
    return uuid.isNull() ? by_other_name[name] : by_uuid[uuid];
}

qint64 device_numbers::next(const device_appearance &row)
{
    if (join.group_of(row) < 0 && name_in_source(row).isEmpty())
        return ++last; // a device of its own
    qint64 &number = known_number(row);
    if (number == 0)
        number = ++last;
    return number;
}

void joined_device_list::add(const device_appearance &row, qint64 number)
{
    const qsizetype place = places.value(number, list.size());
    if (place == list.size()) {
        list.append(joined_device());
        list.last().number = number;
        places.insert(number, place);
    }
    joined_device &joined = list[place];
    joined.appearances.append(row);
    insert_once(joined.sources, row.source);
    for (const join_key &key : row.keys) {
        if (join.is_in_several_sources(key))
            insert_once(joined.keys, key);
    }
}
