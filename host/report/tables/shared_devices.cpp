// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/shared_devices.h"

#include "host/report/tables/json_lines.h"
#include "host/text/json_text.h"

using namespace Qt::StringLiterals;

namespace {

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

void append_text(QByteArray &json, QByteArrayView name, QByteArrayView text)
{
    json += ",\"" + name.toByteArray() + "\":";
    append_json_bytes(json, text);
}

QByteArray appearance_as_json(const device_appearance &appearance, const report_source &source)
{
    QByteArray json = json_row_start(source, appearance.table) + ',';
    append_json_locator(json, appearance.place);
    append_text(json, "uuid", appearance.uuid);
    append_text(json, "device_name", appearance.name);
    append_text(json, "address", appearance.address);
    QByteArray host;
    append_text(host, "resolved_address", appearance.resolved_address);
    append_text(host, "icloud_identifier", appearance.icloud_identifier);
    append_text(host, "preferences_name", appearance.preferences_name);
    return json + ",\"host\":{" + host.sliced(1) + "}}";
}

} // namespace

const QStringList &shared_columns()
{
    static const QStringList names{u"device"_s,
                                   u"joined_by"_s,
                                   u"source"_s,
                                   u"source_name"_s,
                                   u"table"_s,
                                   u"uuid"_s,
                                   u"device_name"_s,
                                   u"address"_s,
                                   u"host_resolved_address"_s,
                                   u"host_icloud_identifier"_s,
                                   u"host_preferences_name"_s,
                                   u"host_file"_s,
                                   u"host_table"_s,
                                   u"host_rowid"_s,
                                   u"host_line"_s,
                                   u"host_offset"_s};
    return names;
}

void add_shared_cells(separated_file &file, const report_case &that_case, const QList<joined_device> &devices)
{
    for (const joined_device &device : devices) {
        if (device.shared_number == 0)
            continue;
        for (const device_appearance &appearance : device.appearances) {
            const report_source &source = that_case.sources.at(appearance.source);
            file.add_number(device.shared_number);
            file.add_text(keys_as_text(device));
            file.add_number(source.record.number);
            for (const QByteArray &text :
                 {source.name.toUtf8(), appearance.table.toUtf8(), appearance.uuid, appearance.name, appearance.address,
                  appearance.resolved_address, appearance.icloud_identifier, appearance.preferences_name,
                  appearance.place.file, appearance.place.table})
                file.add_text(text);
            file.add_number(appearance.place.rowid);
            file.add_number(appearance.place.line);
            file.add_number(appearance.place.offset);
            file.end_line();
        }
    }
}

void tell_shared_lines(const report_case &that_case, const QList<joined_device> &devices,
                       const std::function<void(QByteArrayView line)> &tell)
{
    for (const joined_device &device : devices) {
        if (device.shared_number == 0)
            continue;
        QByteArray json = "{\"device\":" + QByteArray::number(device.shared_number)
                          + ",\"joined_by\":" + keys_as_json(device) + ",\"sources\":[";
        QByteArrayList sources;
        for (const int source : device.sources)
            sources.append(QByteArray::number(that_case.sources.at(source).record.number));
        json += sources.join(',') + "],\"appearances\":[";
        bool is_first = true;
        for (const device_appearance &appearance : device.appearances) {
            json += (is_first ? "" : ",") + appearance_as_json(appearance, that_case.sources.at(appearance.source));
            is_first = false;
        }
        tell(QByteArray(json + "]}\n"));
    }
}
