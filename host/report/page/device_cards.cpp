// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/device_cards.h"

#include "host/devices/device_address.h"

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_texts = 20; // of one kind; a device of a log may have a million rows

/** Different texts in the order of their coming, no more than a reader takes in. */
class text_set
{
public:
    void add(const QByteArray &text)
    {
        if (text.isEmpty() || texts.contains(text))
            return;
        if (texts.size() < most_texts)
            texts.append(text);
        else
            is_cut = true;
    }

    QByteArray text() const
    {
        return texts.join(" | ") + (is_cut ? " | …" : "");
    }

private:
    QByteArrayList texts;
    bool is_cut = false;
};

QByteArray texts_of(const joined_device &device, const std::function<QByteArray(const device_appearance &)> &text_of)
{
    text_set texts;
    for (const device_appearance &appearance : device.appearances)
        texts.add(text_of(appearance));
    return texts.text();
}

QByteArray texts_of(const joined_device &device, QByteArray device_appearance::*text)
{
    return texts_of(device, [text](const device_appearance &appearance) { return appearance.*text; });
}

QByteArray place_text(const report_case &that_case, const device_appearance &appearance)
{
    const row_place &place = appearance.place;
    QByteArray text = "source " + QByteArray::number(that_case.sources.at(appearance.source).record.number) + ' '
                      + appearance.table.toUtf8();
    if (place.line)
        text += ", " + place.file + " line " + QByteArray::number(*place.line);
    else if (place.rowid)
        text += ", " + place.file + ' ' + place.table + " rowid " + QByteArray::number(*place.rowid);
    return text;
}

QByteArray keys_text(const joined_device &device)
{
    text_set texts;
    for (const join_key &key : device.keys)
        texts.add((key.what == join_key::kind::public_address ? "public address " : "iCloud identifier ") + key.value);
    return texts.text();
}

QByteArray why_address_joins_nothing(const QByteArray &text)
{
    const std::optional<device_address> address = parse_device_address(text);
    if (text.isEmpty())
        return "it has no address";
    if (!address)
        return "its address is not of a form that is known";
    return address->is_random ? "its address is random" : "its address is all zeros";
}

/** Empty for a device that more than one source knows. */
QByteArray why_no_other_source(const joined_device &device)
{
    if (device.shared_number > 0)
        return {};
    const bool has_key = std::any_of(device.appearances.cbegin(), device.appearances.cend(),
                                     [](const device_appearance &appearance) { return !appearance.keys.isEmpty(); });
    if (has_key)
        return "no other source has its public address or its iCloud identifier";
    return texts_of(device, [](const device_appearance &appearance) -> QByteArray {
        return why_address_joins_nothing(appearance.address)
               + (appearance.icloud_identifier.isEmpty() ? ", and it has no iCloud identifier"
                                                         : ", and its iCloud identifier is all zeros");
    });
}

} // namespace

html_table device_cards(const report_case &that_case, const QList<joined_device> &devices)
{
    html_table
        table(u"cards"_s, u"Devices of the case"_s,
              u"A card for each device, which the number in front of it opens: what the sources know of it, joined "
              "within a source by UUID, across sources by public address or iCloud identifier. Several texts are "
              "separated by |."_s);
    for (const joined_device &device : devices) {
        QByteArrayList sources;
        for (const int source : device.sources)
            sources.append(QByteArray::number(that_case.sources.at(source).record.number));
        table.begin_row();
        table.add(u"device_name"_s, texts_of(device, &device_appearance::name));
        table.add(u"host_name"_s, texts_of(device, &device_appearance::host_name));
        table.add(u"host_preferences_name"_s, texts_of(device, &device_appearance::preferences_name));
        table.add(u"address"_s, texts_of(device, &device_appearance::address));
        table.add(u"host_address_kind"_s, texts_of(device, &device_appearance::address_kind));
        table.add(u"host_resolved_address"_s, texts_of(device, &device_appearance::resolved_address));
        table.add(u"host_vendor"_s, texts_of(device, &device_appearance::vendor));
        table.add(u"icloud_identifier"_s, texts_of(device, &device_appearance::icloud_identifier));
        table.add(u"uuid"_s, texts_of(device, &device_appearance::uuid));
        table.add(u"sources"_s, sources.join(", "));
        table.add(u"rows"_s, std::optional<qint64>(device.appearances.size()));
        table.add(u"shared_device"_s,
                  device.shared_number > 0 ? std::optional(device.shared_number) : std::optional<qint64>());
        table.add(u"joined_across_sources_by"_s, keys_text(device));
        table.add(u"not_joined_because"_s, why_no_other_source(device));
        table.add(u"appears_as"_s, texts_of(device, [&that_case](const device_appearance &appearance) {
                      return place_text(that_case, appearance);
                  }));
    }
    return table;
}
