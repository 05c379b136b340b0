// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/device_join.h"

#include "host/report/device_address.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QByteArray text_in(const sqlite_statement &row, QLatin1StringView name)
{
    const int column = row.column_named(name);
    return column < 0 ? QByteArray() : row.value_of(column).bytes.toByteArray();
}

/** An identifier that says something: neither empty nor all zeros. */
QByteArray normalised_identifier(QByteArrayView text)
{
    const QByteArray identifier = text.trimmed().toByteArray().toUpper();
    const bool says_something = std::any_of(identifier.cbegin(), identifier.cend(),
                                            [](char byte) { return byte != '0' && byte != '-'; });
    return says_something ? identifier : QByteArray();
}

} // namespace

QLatin1StringView join_key_name(join_key::kind kind)
{
    return kind == join_key::kind::public_address ? "public_address"_L1 : "icloud_identifier"_L1;
}

void device_join::add(const report_row &row, int source, qint64 index)
{
    device_appearance appearance;
    appearance.source = source;
    appearance.table = row.table;
    appearance.row = index;
    appearance.place = row.host.place();
    appearance.uuid = text_in(row.plugin, "uuid"_L1).trimmed().toUpper();
    if (appearance.uuid.isEmpty())
        appearance.uuid = text_in(row.plugin, "sf_device_id"_L1).trimmed().toUpper();
    appearance.name = text_in(row.plugin, "device_name"_L1);
    appearance.address = text_in(row.plugin, "address"_L1);
    if (appearance.address.isEmpty())
        appearance.address = text_in(row.plugin, "device_address"_L1);
    const QByteArray resolved = row.host.value_of(host_field::resolved_address).bytes.toByteArray();
    QByteArray identifier = normalised_identifier(row.host.value_of(host_field::icloud_identifier).bytes);
    if (identifier.isEmpty())
        identifier = normalised_identifier(text_in(row.plugin, "icloud_identifier"_L1));

    const qsizetype number = all.size();
    all.append(appearance);
    parents.append(number);
    if (!appearance.uuid.isEmpty()) {
        const QByteArray key = QByteArray::number(source) + ' ' + appearance.uuid;
        const auto known = by_uuid.constFind(key);
        if (known == by_uuid.cend())
            by_uuid.insert(key, number);
        else
            join(*known, number);
    }
    for (const QByteArray &text : {appearance.address, resolved}) {
        const std::optional<device_address> address = parse_device_address(text);
        if (address && address->joins_sources())
            add_key(number, {join_key::kind::public_address, address->bytes});
    }
    if (!identifier.isEmpty())
        add_key(number, {join_key::kind::icloud_identifier, identifier});
}

void device_join::add_key(qsizetype appearance, const join_key &key)
{
    QList<qsizetype> &known = by_key[key];
    if (!known.isEmpty())
        join(known.first(), appearance);
    const bool is_known_source = std::any_of(known.cbegin(), known.cend(), [&](qsizetype other) {
        return all.at(other).source == all.at(appearance).source;
    });
    if (!is_known_source)
        known.append(appearance);
}

qsizetype device_join::root_of(qsizetype appearance) const
{
    while (parents.at(appearance) != appearance) {
        parents[appearance] = parents.at(parents.at(appearance)); // halves the way for the next
        appearance = parents.at(appearance);
    }
    return appearance;
}

void device_join::join(qsizetype one, qsizetype two)
{
    const qsizetype first = root_of(one);
    const qsizetype second = root_of(two);
    parents[std::max(first, second)] = std::min(first, second); // the root is the first appearance
}

QList<joined_device> device_join::devices() const
{
    QList<joined_device> devices;
    QHash<qsizetype, qsizetype> place_of_root;
    for (qsizetype i = 0; i < all.size(); ++i) {
        const qsizetype root = root_of(i);
        if (root == i) {
            place_of_root.insert(root, devices.size());
            devices.append(joined_device());
        }
        joined_device &device = devices[place_of_root.value(root)];
        device.appearances.append(i);
        if (!device.sources.contains(all.at(i).source))
            device.sources.append(all.at(i).source);
    }
    for (joined_device &device : devices)
        std::sort(device.sources.begin(), device.sources.end());
    for (auto key = by_key.cbegin(); key != by_key.cend(); ++key) {
        if (key->size() > 1)
            devices[place_of_root.value(root_of(key->first()))].keys.append(key.key());
    }
    return devices;
}
