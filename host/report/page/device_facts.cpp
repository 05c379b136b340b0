// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/device_facts.h"

#include "host/devices/device_address.h"

#include <algorithm>
#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView left_out_by_the_log("<private>");
const QByteArray text_separator(" | ");
constexpr qsizetype most_texts = 20; // of one kind; a device of a log may have a million rows

/** Different texts in the order of their coming. */
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

    QByteArrayList list() const
    {
        return is_cut ? texts + QByteArrayList{"…"} : texts;
    }

    QByteArray text() const
    {
        return list().join(text_separator);
    }

private:
    QByteArrayList texts;
    bool is_cut = false;
};

QByteArray why_address_joins_nothing(const QByteArray &text)
{
    const std::optional<device_address> address = parse_device_address(text);
    if (text.isEmpty())
        return "it has no address";
    if (!address)
        return "its address is not of a form that is known";
    return address->is_random ? "its address is random" : "its address is all zeros";
}

QByteArray why_appearance_joins_nothing(const device_appearance &appearance)
{
    return why_address_joins_nothing(appearance.address)
           + (appearance.icloud_identifier.isEmpty() ? ", and it has no iCloud identifier"
                                                     : ", and its iCloud identifier is all zeros");
}

/** A row of a table, of the main file or a write-ahead log, that is no pairing; the rest are lines of lists. */
bool is_seen(const device_appearance &appearance)
{
    return !appearance.is_paired && !appearance.table.isEmpty();
}

/** A line of a log: the device was in use, which proves no pairing. */
bool is_notice(const device_appearance &appearance)
{
    return appearance.place.line.has_value();
}

bool is_in_log_alone(const device_appearance &appearance)
{
    return appearance.found_in.startsWith("wal_"_L1);
}

/** Where logs alone say that a shared device is paired or in use. */
QByteArray notices_of(const report_case &the_case, const device_facts &facts)
{
    const qsizetype count = facts.noticed_in.size();
    if (count == 0)
        return {};
    QByteArray where;
    if (count == 1)
        where = "in source " + source_numbers(the_case, facts.noticed_in) + ' ';
    else if (count < facts.device->sources.size())
        where = "in " + QByteArray::number(count) + " of them ";
    return ", " + where + "by notice of use alone";
}

void add_place(QList<int> &places, int place)
{
    const auto at = std::lower_bound(places.begin(), places.end(), place);
    if (at == places.end() || *at != place)
        places.insert(at, place);
}

} // namespace

QList<device_facts> facts_of(const QList<joined_device> &devices)
{
    QList<device_facts> list;
    list.reserve(devices.size());
    for (const joined_device &device : devices) {
        device_facts facts{&device, device.number, !name_of(device).isEmpty()};
        QList<int> paired_outright;
        for (const device_appearance &appearance : device.appearances) {
            if (appearance.is_paired)
                add_place(facts.paired_in, appearance.source);
            if (appearance.is_paired && !is_notice(appearance))
                add_place(paired_outright, appearance.source);
            if (is_seen(appearance))
                add_place(facts.seen_in, appearance.source);
            add_notes(facts.notes, appearance.notes);
        }
        for (const int place : std::as_const(facts.paired_in)) {
            if (!paired_outright.contains(place))
                facts.noticed_in.append(place);
        }
        list.append(facts);
    }
    return list;
}

const device_facts *device_numbered(const QList<device_facts> &devices, qint64 number)
{
    const auto found = std::lower_bound(devices.cbegin(), devices.cend(), number,
                                        [](const device_facts &facts, qint64 wanted) { return facts.number < wanted; });
    return found != devices.cend() && found->number == number ? &*found : nullptr;
}

QByteArrayList list_of(const joined_device &device, QByteArray device_appearance::*text)
{
    text_set texts;
    for (const device_appearance &appearance : device.appearances)
        texts.add(appearance.*text);
    return texts.list();
}

QByteArray texts_of(const joined_device &device, QByteArray device_appearance::*text)
{
    return list_of(device, text).join(text_separator);
}

QByteArray name_of(const joined_device &device)
{
    for (const auto text :
         {&device_appearance::host_name, &device_appearance::name, &device_appearance::preferences_name}) {
        for (const device_appearance &appearance : device.appearances) {
            if (!(appearance.*text).isEmpty() && appearance.*text != left_out_by_the_log)
                return appearance.*text;
        }
    }
    return {};
}

QByteArray lists_of(const joined_device &device)
{
    text_set texts;
    for (const device_appearance &appearance : device.appearances) {
        if (appearance.table.isEmpty())
            texts.add(QByteArray(appearance.found_in.data(), appearance.found_in.size()));
    }
    return texts.text();
}

QByteArray log_changes_of(const joined_device &device)
{
    text_set texts;
    for (const device_appearance &appearance : device.appearances) {
        if (appearance.found_in == "wal_added"_L1)
            texts.add("only in the log");
        else if (is_in_log_alone(appearance))
            texts.add("changed");
        else if (appearance.is_deleted_by_log)
            texts.add("deleted");
    }
    return texts.text();
}

QByteArray known_as(const device_facts &facts)
{
    const QList<device_appearance> &appearances = facts.device->appearances;
    QByteArrayList words;
    if (facts.is_paired())
        words.append("paired or in use");
    if (!facts.seen_in.isEmpty())
        words.append("seen");
    if (words.isEmpty())
        words.append("listed");
    if (std::all_of(appearances.cbegin(), appearances.cend(), is_in_log_alone))
        words.append("in a write-ahead log alone");
    return words.join(", ");
}

QByteArray link_strength(const report_case &the_case, const device_facts &facts)
{
    if (!facts.is_shared())
        return {};
    const qsizetype sources = facts.device->sources.size();
    if (sources < 2)
        return "other sources know it: the page of the whole case says how";
    const QList<int> &paired_in = facts.paired_in;
    const auto seen = std::count_if(facts.seen_in.cbegin(), facts.seen_in.cend(),
                                    [&paired_in](int place) { return !paired_in.contains(place); });
    const qsizetype paired = paired_in.size();
    const qsizetype listed = sources - paired - seen;
    QByteArray words = paired > 1    ? "paired in both"
                       : paired == 1 ? (seen > 0 ? "paired and seen" : "paired and listed")
                       : listed > 1  ? "listed in both"
                       : listed == 1 ? "listed and seen"
                                     : "seen in both, which may be mere proximity";
    if (sources > 2) {
        words += " (paired in " + QByteArray::number(paired) + ", seen in " + QByteArray::number(seen);
        if (listed > 0)
            words += ", listed in " + QByteArray::number(listed);
        words += ')';
    }
    return words + notices_of(the_case, facts);
}

QByteArray key_kind_text(const join_key &key)
{
    return key.what == join_key::kind::public_address ? "public address" : "iCloud identifier";
}

QByteArray keys_text(const joined_device &device)
{
    text_set texts;
    for (const join_key &key : device.keys)
        texts.add(key_kind_text(key) + ' ' + key.value);
    return texts.text();
}

QByteArray why_not_joined(const joined_device &device, bool is_all_read)
{
    if (device.shared_number > 0)
        return {};
    const bool has_key = std::any_of(device.appearances.cbegin(), device.appearances.cend(),
                                     [](const device_appearance &appearance) { return !appearance.keys.isEmpty(); });
    if (has_key && !is_all_read)
        return "no row that was read of another source has its public address or its iCloud identifier; not all of the "
               "case was read";
    if (has_key)
        return "no other source has its public address or its iCloud identifier";
    text_set reasons;
    for (const device_appearance &appearance : device.appearances)
        reasons.add(why_appearance_joins_nothing(appearance));
    return reasons.text();
}

QByteArray source_numbers(const report_case &the_case, const QList<int> &places)
{
    QByteArrayList numbers;
    for (const int place : places)
        numbers.append(QByteArray::number(the_case.sources.at(place).record.number));
    return numbers.join(", ");
}
