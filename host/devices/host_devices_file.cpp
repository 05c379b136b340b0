// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/host_devices_file.h"

#include "host/devices/mobile_devices.h"
#include "host/devices/preferences_devices.h"
#include "host/devices/registry_devices.h"
#include "host/files/new_file.h"
#include "host/files/open_without_links.h"
#include "host/files/sha256.h"
#include "host/source/macos_databases.h"
#include "host/source/windows_hive.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

/** A list of devices, and what reads it. */
struct list_reader
{
    QLatin1StringView list;
    bool (*is_at)(const QString &path);
    device_list (*read)(const QByteArray &bytes);
    qint64 most_bytes;
};

constexpr qint64 most_list_bytes = qint64(64) << 20; // more than any reader of property lists takes
constexpr qint64 most_hive_bytes = qint64(512) << 20;

// clang-format off
constexpr list_reader readers[] = {
    {"preferences"_L1,    [](const QString &path) { return path == macos_preferences_file; },    read_preferences_devices, most_list_bytes},
    {"mobile_devices"_L1, [](const QString &path) { return path == macos_mobile_devices_file; }, read_mobile_devices,      most_list_bytes},
    {"registry"_L1,       is_windows_hive,                                                       read_registry_devices,    most_hive_bytes},
};
// clang-format on

/** The bytes of a working copy, which must still be those of the evidence. */
QByteArray bytes_of(const QString &copy, const evidence_file &file, const list_reader &reader, device_list &result)
{
    QFile opened;
    if (const QString problem = open_case_file(opened, copy); !problem.isEmpty()) {
        result.problems.append(u"its working copy cannot be read: "_s + problem);
        return {};
    }
    if (opened.size() > reader.most_bytes) {
        result.problems.append(u"it has more than "_s + QString::number(reader.most_bytes >> 20)
                               + u" MiB, too much for such a list"_s);
        return {};
    }
    QByteArray bytes = opened.readAll();
    if (sha256::of(bytes) != file.copy_sha256)
        result.problems.append(u"its working copy is not what was copied from the evidence"_s);
    return bytes;
}

device_list read_list(const list_reader &reader, const evidence_file &file, const QString &copies)
{
    device_list result;
    const QByteArray bytes = bytes_of(copies + u'/' + file.path, file, reader, result);
    return result.problems.isEmpty() ? reader.read(bytes) : result;
}

/** The transaction logs that a note on a hive speaks of. */
QString logs_beside(const evidence_state &evidence, const list_reader &reader)
{
    QStringList names;
    for (const evidence_file &file : evidence.files) {
        if (file.state != evidence_file::presence::absent && is_windows_hive_log(file.path))
            names.append(QFileInfo(file.path).fileName());
    }
    return reader.is_at != is_windows_hive || names.isEmpty() ? QString() : u" ("_s + names.join(u", "_s) + u')';
}

} // namespace

host_device_findings write_host_devices(const evidence_state &evidence, const QString &copies, int source,
                                        const QString &file)
{
    host_device_findings findings;
    std::optional<new_file> output;
    for (const list_reader &reader : readers) {
        for (const evidence_file &listed : evidence.files) {
            if (!reader.is_at(listed.path) || listed.copy_sha256.isEmpty())
                continue;
            if (!output)
                output.emplace(file);
            const device_list list = read_list(reader, listed, copies);
            for (const host_device &device : list.devices)
                output->add(host_device_line(device, {source, reader.list, listed.path}));
            findings.count = findings.count.value_or(0) + list.devices.size();
            for (const QString &problem : list.problems)
                findings.problems.append(u"the devices of "_s + listed.path + u": "_s + problem);
            for (const QString &note : list.notes)
                findings.notes.append(listed.path + u": "_s + note + logs_beside(evidence, reader));
        }
    }
    if (output)
        output->commit();
    return findings;
}
