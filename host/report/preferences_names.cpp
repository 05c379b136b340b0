// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/preferences_names.h"

#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/report/binary_dictionaries.h"
#include "host/report/device_address.h"

#include <QXmlStreamReader>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 most_bytes = 16 << 20; // real lists have less than one MiB

/** Calls @p read at the value of each pair of the dictionary that the reader stands at; it reads that or skips it. */
void for_each_pair(QXmlStreamReader &xml, const std::function<void(const QString &key)> &read)
{
    QString key;
    while (xml.readNextStartElement()) {
        if (xml.name() == "key"_L1)
            key = xml.readElementText(QXmlStreamReader::SkipChildElements);
        else
            read(key);
    }
}

/** Goes into the dictionary that the reader stands at, if it is one and @p is_wanted. */
void into_dictionary(QXmlStreamReader &xml, bool is_wanted, const std::function<void(const QString &key)> &read)
{
    if (is_wanted && xml.name() == "dict"_L1)
        for_each_pair(xml, read);
    else
        xml.skipCurrentElement();
}

} // namespace

preferences_names::preferences_names(const QByteArray &list)
{
    if (!read_binary(list) && !read_xml(list))
        problem_text = u"it is no property list with a dictionary at its top"_s;
}

preferences_names preferences_names::of_file(const QString &file)
{
    try {
        return preferences_names(read_whole_file(file, most_bytes));
    } catch (const host_error &) {
        preferences_names none;
        none.problem_text = u"it cannot be read"_s;
        return none;
    }
}

void preferences_names::add(QByteArrayView key, const QByteArray &name)
{
    const std::optional<device_address> address = parse_device_address(key);
    if (address && address->joins_sources() && !names.contains(address->bytes))
        names.insert(address->bytes, name);
}

bool preferences_names::read_binary(QByteArrayView list)
{
    const binary_dictionaries dictionaries(list);
    if (!dictionaries.top() || !dictionaries.for_each(*dictionaries.top(), [](quint64, quint64) {}))
        return false;
    const std::optional<quint64> cache = dictionaries.value_of(*dictionaries.top(), "DeviceCache");
    if (!cache)
        return true;
    dictionaries.for_each(*cache, [&](quint64 key, quint64 device) {
        const std::optional<QByteArray> address = dictionaries.text(key);
        if (!address || !parse_device_address(*address))
            return;
        const std::optional<quint64> name = dictionaries.value_of(device, "Name");
        const std::optional<QByteArray> text = name ? dictionaries.text(*name) : std::nullopt;
        if (text)
            add(*address, *text);
    });
    if (dictionaries.is_overwhelming())
        problem_text = u"it is made to overwhelm its reader"_s;
    return true;
}

bool preferences_names::read_xml(const QByteArray &list)
{
    QXmlStreamReader xml(list);
    if (!xml.readNextStartElement() || xml.name() != "plist"_L1 || !xml.readNextStartElement()
        || xml.name() != "dict"_L1)
        return false;
    for_each_pair(xml, [&](const QString &part) {
        into_dictionary(xml, part == "DeviceCache"_L1, [&](const QString &address) {
            into_dictionary(xml, true, [&](const QString &fact) {
                if (fact == "Name"_L1 && xml.name() == "string"_L1)
                    add(address.toUtf8(), xml.readElementText(QXmlStreamReader::SkipChildElements).toUtf8());
                else
                    xml.skipCurrentElement();
            });
        });
    });
    return !xml.hasError();
}

QByteArray preferences_names::name_of(std::initializer_list<QByteArrayView> texts) const
{
    if (names.isEmpty())
        return {};
    for (const QByteArrayView text : texts) {
        const std::optional<device_address> address = parse_device_address(text);
        if (address && address->joins_sources() && names.contains(address->bytes))
            return names.value(address->bytes);
    }
    return {};
}
