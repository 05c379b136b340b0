// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/shared_devices.h"

#include "host/report/reading/common_columns.h"
#include "host/report/tables/json_lines.h"
#include "host/text/json_text.h"

using namespace Qt::StringLiterals;

namespace {

template<QByteArray device_appearance::*Text>
cell text(const shared_line &line)
{
    return cell::of_text(line.appearance.*Text);
}

QByteArray keys_as_text(const joined_device &device)
{
    QByteArrayList texts;
    for (const join_key &key : device.keys)
        texts.append(QByteArray(join_key_name(key.what).data()) + ' ' + key.value);
    return texts.join("; ");
}

QByteArray keys_as_json(const joined_device &device)
{
    QByteArray json = "[";
    for (const join_key &key : device.keys) {
        if (json.size() > 1)
            json += ',';
        json += "{\"kind\":\"" + QByteArray(join_key_name(key.what).data()) + "\",\"value\":";
        append_json_bytes(json, key.value);
        json += '}';
    }
    return json + ']';
}

note_marks marks_of(const joined_device &device)
{
    notes_of_one notes;
    for (const device_appearance &appearance : device.appearances)
        add_notes(notes, appearance.notes);
    return note_marks(notes);
}

shared_line line_of(const report_case &the_case, const joined_device &device, const device_appearance &appearance,
                    const note_marks &marks)
{
    return {device, appearance, the_case.sources.at(appearance.source), keys_as_text(device), appearance.table.toUtf8(),
            marks};
}

QByteArray device_as_json(const report_case &the_case, const joined_device &device, const json_objects &appearances)
{
    const note_marks marks = marks_of(device);
    QByteArray json = "{\"device\":" + QByteArray::number(device.shared_number)
                      + ",\"card\":" + QByteArray::number(device.number) + ",\"note\":" + marks.json + ",\"flag\":"
                      + text_of(marks.flag()) + ",\"joined_by\":" + keys_as_json(device) + ",\"sources\":[";
    QByteArrayList sources;
    for (const int source : device.sources)
        sources.append(QByteArray::number(the_case.sources.at(source).record.number));
    json += sources.join(',') + "],\"appearances\":[";
    for (const device_appearance &appearance : device.appearances) {
        json += json.endsWith('[') ? "" : ",";
        appearances.append(json, cells_of(shared_columns(), line_of(the_case, device, appearance, marks)));
    }
    return json + "]}\n";
}

} // namespace

const line_columns<shared_line> &shared_columns()
{
    using group = column_group;
    using use = column_use;
    using one = device_appearance;
    // clang-format off
    static const line_columns<shared_line> columns =
        line_columns<shared_line>{
            {{"device"_ba, group::line, use::cells_only, {}, "Device"_L1, "its number among the devices that more than one source knows"_L1},
             [](const shared_line &line) { return cell::of_integer(line.device.shared_number); }},
            {{"joined_by"_ba, group::line, use::cells_only, {}, "Joined by"_L1, "what the sources have in common"_L1},
             [](const shared_line &line) { return cell::of_text(line.joined_by); }},
        }
        + source_columns<shared_line>()
        + line_columns<shared_line>{
            {{"table"_ba, group::source, {}, {}, "Table"_L1, "the table of the result"_L1},
             [](const shared_line &line) { return cell::of_text_or_null(line.table); }},
            {{"found_in"_ba, group::line, {}, {}, "Found in"_L1, "row: of the result; else a write-ahead log or a list of the host's own reading"_L1},
             [](const shared_line &line) { return cell::of_text(line.appearance.found_in); }},
            {{"uuid"_ba, group::line, {}, {}, "UUID"_L1, "of the row; it means nothing in another source"_L1}, text<&one::uuid>},
            {{"device_name"_ba, group::line, {}, {}, "Name"_L1, "of the result"_L1}, text<&one::name>},
            {{"address"_ba, group::line, {}, {}, "Address"_L1, "of the result"_L1}, text<&one::address>},
            {{"resolved_address"_ba, group::host, {}, {}, "Resolved address"_L1, {}}, text<&one::resolved_address>},
            {{"icloud_identifier"_ba, group::host, {}, {}, "iCloud identifier"_L1, {}}, text<&one::icloud_identifier>},
            {{"preferences_name"_ba, group::host, {}, {}, "Name in the preferences"_L1, {}}, text<&one::preferences_name>},
        }
        + place_columns<shared_line>()
        + line_columns<shared_line>{
            {{"card"_ba, group::line, use::cells_only, {}, "Card"_L1, "its number among all devices, as on the page"_L1},
             [](const shared_line &line) { return cell::of_integer(line.device.number); }},
            {{"note"_ba, group::line, use::cells_only, false, "Note"_L1, "what an examiner noted of the device"_L1},
             [](const shared_line &line) { return cell::of_text_or_null(line.marks.text); }},
            {{"flag"_ba, group::line, use::cells_only, true, "Flag"_L1, "whether an examiner has flagged the device"_L1},
             [](const shared_line &line) { return line.marks.flag(); }},
        };
    // clang-format on
    return columns;
}

void for_each_shared_appearance(const report_case &the_case, const QList<joined_device> &devices,
                                const std::function<void(const line_cells &cells)> &take)
{
    for (const joined_device &device : devices) {
        if (device.shared_number == 0)
            continue;
        const note_marks marks = marks_of(device);
        for (const device_appearance &appearance : device.appearances)
            take(cells_of(shared_columns(), line_of(the_case, device, appearance, marks)));
    }
}

void for_each_shared_device(const report_case &the_case, const QList<joined_device> &devices,
                            const std::function<void(QByteArrayView line)> &take)
{
    const json_objects appearances(columns_of(shared_columns()));
    for (const joined_device &device : devices) {
        if (device.shared_number > 0)
            take(device_as_json(the_case, device, appearances));
    }
}
