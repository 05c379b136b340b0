// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/preferences_devices.h"

#include "host/devices/assigned_numbers.h"
#include "host/devices/device_address.h"
#include "host/devices/property_list_devices.h"

#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

const QString cache_key = u"DeviceCache"_s;
const QString paired_key = u"PairedDevices"_s;

constexpr int deepest_naming_level = 4;

QByteArray address_of(const QVariant &value)
{
    constexpr qsizetype address_bytes = 6;
    if (value.typeId() == QMetaType::QByteArray && value.toByteArray().size() == address_bytes)
        return value.toByteArray().toHex(':');
    if (value.typeId() != QMetaType::QString)
        return {};
    const std::optional<device_address> address = parse_device_address(value.toString().toUtf8());
    return address ? address->bytes : QByteArray();
}

/** Which keys of the list name an address, and where arrays name it. */
class naming_keys
{
public:
    explicit naming_keys(const QVariantMap &list)
    {
        for (auto entry = list.cbegin(); entry != list.cend(); ++entry) {
            if (entry.key() == cache_key)
                continue;
            add(entry.key(), entry.value(), 0);
            if (entry->typeId() == QMetaType::QVariantList)
                add_array(entry.key(), entry->toList());
        }
    }

    QStringList keys_of(const QByteArray &address) const
    {
        return keys.value(address);
    }

    /** An entry of an array. */
    struct place
    {
        QString text;
        QByteArray address;
        QString path;
    };

    const QList<place> &places() const
    {
        return in_arrays;
    }

private:
    void note(const QString &key, const QByteArray &address)
    {
        if (!address.isEmpty() && keys.value(address).value(keys.value(address).size() - 1) != key)
            keys[address].append(key);
    }

    void add(const QString &key, const QVariant &value, int level)
    {
        if (level > deepest_naming_level)
            return;
        note(key, address_of(value));
        if (value.typeId() == QMetaType::QVariantList) {
            const QVariantList list = value.toList();
            for (const QVariant &entry : list)
                add(key, entry, level + 1);
        } else if (value.typeId() == QMetaType::QVariantMap) {
            const QVariantMap map = value.toMap();
            for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
                note(key, address_of(entry.key()));
                add(key, entry.value(), level + 1);
            }
        }
    }

    void add_array(const QString &key, const QVariantList &entries)
    {
        for (qsizetype i = 0; i < entries.size(); ++i) {
            const QVariant &entry = entries.at(i);
            if (const QByteArray address = address_of(entry); !address.isEmpty())
                in_arrays.append(
                    {entry.typeId() == QMetaType::QString ? entry.toString() : QString::fromLatin1(address), address,
                     key + u'/' + QString::number(i)});
        }
    }

    QHash<QByteArray, QStringList> keys;
    QList<place> in_arrays;
};

host_device cached_device(const QString &address, const QVariant &entry)
{
    host_device device;
    device.address = address;
    device.path = cache_key + u'/' + address;
    device.raw = entry;
    const QVariantMap members = entry.toMap();
    device.add_name(members.value(u"Name"_s));
    device.add_name(members.value(u"displayName"_s));
    device.class_of_device = whole_number(members.value(u"ClassOfDevice"_s));
    if (const std::optional<qint64> vendor = whole_number(members.value(u"VendorID"_s)))
        device.vendor = {*vendor, vendor_source(whole_number(members.value(u"VendorIDSource"_s)))};
    device.product = whole_number(members.value(u"ProductID"_s));
    device.lmp_version = whole_number(members.value(u"LMPVersion"_s));
    for (auto member = members.cbegin(); member != members.cend(); ++member) {
        if (member->typeId() == QMetaType::QDateTime)
            device.times.append(date_time(member.key(), member.value(), "preferences list"_L1));
    }
    return device;
}

} // namespace

device_list read_preferences_devices(const QByteArray &bytes)
{
    device_list result;
    const std::optional<QVariantMap> list = top_dictionary(bytes, result);
    if (!list)
        return result;
    const bool knows_paired = list->value(paired_key).typeId() == QMetaType::QVariantList;
    const naming_keys names(*list);
    QSet<QByteArray> known;
    const auto add = [&](host_device device, const QByteArray &address) {
        device.kind = "classic"_L1;
        device.listed_in = names.keys_of(address);
        if (knows_paired)
            device.is_paired = device.listed_in.contains(paired_key);
        known.insert(address);
        result.devices.append(device);
    };
    const QVariantMap cache = list->value(cache_key).toMap();
    for (auto entry = cache.cbegin(); entry != cache.cend(); ++entry)
        add(cached_device(entry.key(), entry.value()), address_of(entry.key()));
    for (const naming_keys::place &place : names.places()) {
        if (known.contains(place.address))
            continue;
        host_device device;
        device.address = place.text;
        device.path = place.path;
        add(device, place.address);
    }
    return result;
}
