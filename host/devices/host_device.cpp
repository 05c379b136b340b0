// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/host_device.h"

#include "host/devices/assigned_numbers.h"
#include "host/devices/device_address.h"
#include "host/devices/device_json.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QVariant text_or_none(const QString &text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

template<typename Value>
QVariant value_or_none(const std::optional<Value> &value)
{
    return value ? QVariant::fromValue(*value) : QVariant();
}

QVariant normal_address(const QString &text)
{
    const std::optional<device_address> address = parse_device_address(text.toUtf8());
    return address ? QVariant(QString::fromLatin1(address->bytes)) : QVariant();
}

QVariant decoded_class(const std::optional<qint64> &number)
{
    if (!number)
        return {};
    const device_class decoded = class_of_device(*number);
    return QVariantMap{{u"value"_s, *number},
                       {u"service"_s, decoded.services},
                       {u"major"_s, text_or_none(decoded.major)},
                       {u"minor"_s, text_or_none(decoded.minor)}};
}

QVariant vendor_object(const std::optional<device_vendor> &vendor)
{
    if (!vendor)
        return {};
    return QVariantMap{{u"id"_s, vendor->id}, {u"source"_s, text_or_none(vendor->source)}};
}

QVariant time_objects(const QList<device_time> &times)
{
    QVariantList list;
    for (const device_time &time : times)
        list.append(QVariantMap{{u"name"_s, time.name},
                                {u"raw"_s, time.raw},
                                {u"utc"_s, text_or_none(time.utc)},
                                {u"clock"_s, time.is_known ? u"utc"_s : u"unknown"_s},
                                {u"meaning"_s, time.meaning}});
    return list;
}

} // namespace

void host_device::add_name(const QVariant &name)
{
    const QString text = name.typeId() == QMetaType::QString ? name.toString() : QString();
    if (!text.isEmpty() && !names.contains(text))
        names.append(text);
}

QByteArray host_device_line(const host_device &device, const device_list_place &place)
{
    const QString version = device.lmp_version ? QString(bluetooth_version(*device.lmp_version)) : QString();
    const std::pair<QByteArrayView, QVariant> members[] = {
        {"source", place.source},
        {"list", QString(place.list)},
        {"address", text_or_none(device.address)},
        {"address_normal", normal_address(device.address)},
        {"names", device.names},
        {"kind", text_or_none(device.kind)},
        {"is_paired", value_or_none(device.is_paired)},
        {"class_of_device", decoded_class(device.class_of_device)},
        {"vendor", vendor_object(device.vendor)},
        {"product", value_or_none(device.product)},
        {"bluetooth_version", text_or_none(version)},
        {"times", time_objects(device.times)},
        {"raw", device.raw},
        {"locator", QVariantMap{{u"file"_s, place.file}, {u"path"_s, device.path}}},
        {"is_current", value_or_none(device.is_current)},
        {"listed_in", device.listed_in},
    };
    QByteArray line;
    for (const auto &[name, value] : members) {
        line += line.isEmpty() ? "{\"" : ",\"";
        line += name;
        line += "\":";
        append_json_variant(line, value);
    }
    return line + "}\n";
}

std::optional<qint64> whole_number(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::Double: {
        const double number = value.toDouble();
        if (std::abs(number) < double(qint64(1) << 53) && std::trunc(number) == number) // exact
            return qint64(number);
        return {};
    }
    default:
        return {};
    }
}

device_time date_time(const QString &name, const QVariant &value, QLatin1StringView list_words)
{
    const QDateTime date = value.toDateTime();
    return {name, value, date.isValid() ? utc_of(date) : QString(), true, name + u" of the "_s + list_words};
}
