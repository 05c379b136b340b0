// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/shared_devices.h"

#include "host/files/json_text.h"
#include "host/report/json_lines.h"

using namespace Qt::StringLiterals;

namespace {

const QStringList &shared_columns()
{
    static const QStringList names{u"device"_s,     u"joined_by"_s,  u"source"_s,      u"source_name"_s,
                                   u"table"_s,      u"uuid"_s,       u"device_name"_s, u"address"_s,
                                   u"host_file"_s,  u"host_table"_s, u"host_rowid"_s,  u"host_line"_s,
                                   u"host_offset"_s};
    return names;
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

QByteArray appearance_as_json(const device_appearance &appearance, const report_source &source)
{
    QByteArray json = json_row_start(source, appearance.table) + ',';
    append_json_locator(json, appearance.place);
    json += ",\"uuid\":";
    append_json_bytes(json, appearance.uuid);
    json += ",\"device_name\":";
    append_json_bytes(json, appearance.name);
    json += ",\"address\":";
    append_json_bytes(json, appearance.address);
    return json + '}';
}

} // namespace

void write_shared_cells(const report_case &that_case, const device_join &join, const QList<joined_device> &devices,
                        const QString &folder, const QString &name, const separated_form &form, changed_cells &changes)
{
    separated_file file(folder, name, form, shared_columns(), changes);
    qint64 number = 0;
    for (const joined_device &device : devices) {
        if (device.sources.size() < 2)
            continue;
        ++number;
        for (const qsizetype place : device.appearances) {
            const device_appearance &appearance = join.appearances().at(place);
            const report_source &source = that_case.sources.at(appearance.source);
            file.add_number(number);
            file.add_text(keys_as_text(device));
            file.add_number(source.record.number);
            for (const QByteArray &text :
                 {source.name.toUtf8(), appearance.table.toUtf8(), appearance.uuid, appearance.name, appearance.address,
                  appearance.place.file, appearance.place.table})
                file.add_text(text);
            file.add_number(appearance.place.rowid);
            file.add_number(appearance.place.line);
            file.add_number(appearance.place.offset);
            file.end_line();
        }
    }
    file.commit();
}

void write_shared_lines(const report_case &that_case, const device_join &join, const QList<joined_device> &devices,
                        const QString &path)
{
    new_file file(path);
    qint64 number = 0;
    for (const joined_device &device : devices) {
        if (device.sources.size() < 2)
            continue;
        QByteArray json = "{\"device\":" + QByteArray::number(++number) + ",\"joined_by\":" + keys_as_json(device)
                          + ",\"sources\":[";
        for (qsizetype i = 0; i < device.sources.size(); ++i)
            json += (i == 0 ? "" : ",") + QByteArray::number(that_case.sources.at(device.sources.at(i)).record.number);
        json += "],\"appearances\":[";
        for (qsizetype i = 0; i < device.appearances.size(); ++i) {
            const device_appearance &appearance = join.appearances().at(device.appearances.at(i));
            json += (i == 0 ? "" : ",") + appearance_as_json(appearance, that_case.sources.at(appearance.source));
        }
        file.add(QByteArray(json + "]}\n"));
    }
    file.commit();
}
