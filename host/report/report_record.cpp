// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/report_record.h"

#include "host/files/file_hash.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/text/json_member.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>

using namespace Qt::StringLiterals;

namespace {

QJsonObject entry_of(const QString &folder, const QString &name)
{
    const QString path = folder + u'/' + name;
    const std::optional<QString> sha256 = hash_of_file(path);
    if (!sha256)
        throw host_error(error_kind::io, path + u" cannot be read again"_s);
    return {{u"path"_s, name}, {u"size"_s, QFileInfo(path).size()}, {u"sha256"_s, *sha256}};
}

/** By path. */
QMap<QString, QJsonObject> earlier_entries(const QString &folder, const QJsonValue &manifest_sha256)
{
    QMap<QString, QJsonObject> entries;
    const QString path = folder + u'/' + report_record_name;
    if (!path_exists(path))
        return entries;
    try {
        const QJsonObject record = read_json_file(path);
        if (record.value("manifest_sha256"_L1) != manifest_sha256)
            return entries;
        for (const auto entry : record.value("files"_L1).toArray()) {
            const QString name = entry.toObject().value("path"_L1).toString();
            if (!name.isEmpty() && !name.contains(u'/') && path_exists(folder + u'/' + name))
                entries.insert(name, entry.toObject());
        }
    } catch (const host_error &) {
        // a record that cannot be read says nothing
    }
    return entries;
}

} // namespace

void write_report_record(const QString &folder, const QString &manifest_sha256, const QStringList &files)
{
    const QJsonValue manifest = text_or_null(manifest_sha256);
    QMap<QString, QJsonObject> entries = earlier_entries(folder, manifest);
    for (const QString &name : files)
        entries.insert(name, entry_of(folder, name));
    QJsonArray list;
    for (const QJsonObject &entry : std::as_const(entries))
        list.append(entry);
    write_json_file(folder + u'/' + report_record_name, {{u"format"_s, u"bluetooth-logs report"_s},
                                                         {u"version"_s, 1},
                                                         {u"manifest_sha256"_s, manifest},
                                                         {u"files"_s, list}});
}
