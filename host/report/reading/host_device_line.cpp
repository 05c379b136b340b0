// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/host_device_line.h"

#include "host/report/reading/common_columns.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

/** A member that reports have as it stands in the case. */
template<const char *Name>
cell as_kept(const host_device_line &line)
{
    const QByteArrayView value = line.kept.raw.value(Name);
    return value.isEmpty() || value == "null" ? cell() : cell::of_text(value);
}

constexpr char names_member[] = "names";
constexpr char is_paired_member[] = "is_paired";
constexpr char class_of_device_member[] = "class_of_device";
constexpr char vendor_member[] = "vendor";
constexpr char product_member[] = "product";
constexpr char times_member[] = "times";
constexpr char raw_member[] = "raw";
constexpr char is_current_member[] = "is_current";
constexpr char listed_in_member[] = "listed_in";

QByteArray joined_texts(const QJsonValue &list)
{
    QByteArrayList texts;
    for (const auto text : list.toArray())
        texts.append(text.toString().toUtf8());
    return texts.join(" | ");
}

} // namespace

const line_columns<host_device_line> &host_device_columns()
{
    using group = column_group;
    using use = column_use;
    using line = host_device_line;
    // clang-format off
    static const line_columns<host_device_line> columns =
        source_columns<host_device_line>()
        + line_columns<host_device_line>{
            {{"list"_ba, group::line, {}, false, "List"_L1,
              "which list: preferences, mobile_devices or registry"_L1}, [](const line &one) { return cell::of_text(one.list); }},
            {{"address"_ba, group::line, {}, false, "Address"_L1,
              "as the list writes it"_L1}, [](const line &one) { return cell::of_text_or_null(one.address); }},
            {{"address_normal"_ba, group::line, {}, false, "Address, normal form"_L1,
              "the address in small letters with colons"_L1}, [](const line &one) { return cell::of_text_or_null(one.address_normal); }},
            {{"names"_ba, group::line, use::members_only, true, "Names"_L1,
              "the names that the list has"_L1}, as_kept<names_member>},
            {{"names"_ba, group::line, use::cells_only, false, "Names"_L1,
              "the names that the list has, separated by |"_L1}, [](const line &one) { return cell::of_text_or_null(one.names); }},
            {{"kind"_ba, group::line, {}, false, "Kind"_L1,
              "classic, le or both; NULL where the list does not say"_L1}, [](const line &one) { return cell::of_text_or_null(one.kind); }},
            {{"is_paired"_ba, group::line, {}, true, "Paired"_L1,
              "whether the list says that the device is paired; NULL where it does not say"_L1}, as_kept<is_paired_member>},
            {{"class_of_device"_ba, group::line, {}, true, "Class of device"_L1,
              "the number, and service, major and minor class by the assigned numbers"_L1}, as_kept<class_of_device_member>},
            {{"vendor"_ba, group::line, {}, true, "Vendor"_L1,
              "the number of the maker and whose number it is: SIG or USB"_L1}, as_kept<vendor_member>},
            {{"product"_ba, group::line, {}, true, "Product"_L1,
              "the number of the product"_L1}, as_kept<product_member>},
            {{"bluetooth_version"_ba, group::line, {}, false, "Bluetooth version"_L1,
              "by the version of the link manager"_L1}, [](const line &one) { return cell::of_text_or_null(one.bluetooth_version); }},
            {{"times"_ba, group::line, {}, true, "Times"_L1,
              "each with its name, the value as it stands there, the time it is, the clock and what it means"_L1}, as_kept<times_member>},
            {{"raw"_ba, group::line, {}, true, "Whole entry"_L1,
              "all that the list has under the address"_L1}, as_kept<raw_member>},
            {{"is_current"_ba, group::line, {}, true, "Current control set"_L1,
              "whether the control set is the current one; NULL outside the registry"_L1}, as_kept<is_current_member>},
            {{"listed_in"_ba, group::line, {}, true, "Also listed in"_L1,
              "the other keys of the list that name the device"_L1}, as_kept<listed_in_member>},
            {{"file"_ba, group::locator, {}, false, "File"_L1,
              "the file of the evidence, relative to the source"_L1}, [](const line &one) { return cell::of_text_or_null(one.place().file); }},
            {{"path"_ba, group::locator, {}, false, "Path of keys"_L1,
              "the keys that lead to the entry"_L1}, [](const line &one) { return cell::of_text_or_null(one.path); }},
        }
        + note_columns<line>();
    // clang-format on
    return columns;
}

QString for_each_host_device(const report_case &the_case, const report_source &source,
                             const std::function<void(const host_device_line &device)> &take)
{
    if (source.is_locked)
        return {};
    const QString path = the_case.layout.source(source.record.number).host_devices();
    return for_each_kept_line(path, [&](const kept_line &kept) {
        const QJsonObject locator = kept.json.value("locator"_L1).toObject();
        take({source,
              kept,
              {bytes_of_json(locator.value("file"_L1)), {}, {}, {}, {}},
              bytes_of_json(locator.value("path"_L1)),
              kept.bytes("list"_L1),
              kept.bytes("address"_L1),
              kept.bytes("address_normal"_L1),
              joined_texts(kept.json.value("names"_L1)),
              kept.bytes("kind"_L1),
              kept.bytes("bluetooth_version"_L1),
              the_case.notes->of_device({kept.bytes("address"_L1)})});
    });
}
