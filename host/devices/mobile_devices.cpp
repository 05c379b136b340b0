// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/mobile_devices.h"

#include "host/devices/device_address.h"
#include "host/devices/device_json.h"
#include "host/devices/property_list_devices.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 seconds_1970_to_2001 = 978307200;
constexpr qint64 year_2000 = 946684800; // since 1970
constexpr qint64 year_2035 = 2051222400;

/** A moment that a number of seconds may count from. */
struct epoch
{
    qint64 seconds; ///< since 1970
    QLatin1StringView words;
};

constexpr epoch epochs[] = {
    {0, "LastSeenTime of the mobile list, if it is seconds since 1970"_L1},
    {seconds_1970_to_2001, "LastSeenTime of the mobile list, if it is seconds since 2001"_L1},
};

/** Each reading of a number that falls between 2000 and 2035; none of them is known to be the right one. */
void add_last_seen(host_device &device, const QVariant &value)
{
    const QString name = u"LastSeenTime"_s;
    const std::optional<qint64> seconds = whole_number(value);
    bool has_reading = false;
    const bool is_small = seconds && *seconds >= 0 && *seconds < year_2035;
    for (const epoch &start : epochs) {
        const qint64 time = is_small ? *seconds + start.seconds : 0;
        if (time < year_2000 || time >= year_2035)
            continue;
        has_reading = true;
        device.times.append({name, value, utc_of(QDateTime::fromSecsSinceEpoch(time, Qt::UTC)), false, start.words});
    }
    if (!has_reading)
        device.times.append({name, value, QString(), false, u"LastSeenTime of the mobile list"_s});
}

host_device device_of(const QString &address, const QVariant &entry)
{
    host_device device;
    device.address = address;
    device.path = address;
    device.raw = entry;
    device.kind = "classic"_L1;
    const QVariantMap members = entry.toMap();
    for (const QString &name : {u"Name"_s, u"UserNameKey"_s, u"DefaultName"_s})
        device.add_name(members.value(name));
    if (const std::optional<qint64> vendor = whole_number(members.value(u"DeviceIdVendor"_s)))
        device.vendor = {*vendor, {}};
    device.product = whole_number(members.value(u"DeviceIdProduct"_s));
    for (auto member = members.cbegin(); member != members.cend(); ++member) {
        if (member->typeId() == QMetaType::QDateTime)
            device.times.append(date_time(member.key(), member.value(), "mobile list"_L1));
        else if (member.key() == "LastSeenTime"_L1)
            add_last_seen(device, member.value());
    }
    return device;
}

} // namespace

device_list read_mobile_devices(const QByteArray &bytes)
{
    device_list result;
    const std::optional<QVariantMap> list = top_dictionary(bytes, result);
    if (!list)
        return result;
    for (auto entry = list->cbegin(); entry != list->cend(); ++entry) {
        if (entry->typeId() == QMetaType::QVariantMap || parse_device_address(entry.key().toUtf8()))
            result.devices.append(device_of(entry.key(), entry.value()));
    }
    return result;
}
