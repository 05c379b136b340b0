// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/report_record.h"

#include "host/files/folder_listing.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView report_format("bluetooth-logs report");

} // namespace

report_record read_report_record(const QString &folder)
{
    const QString path = folder + u'/' + report_record_name;
    const QJsonObject members = read_json_file(path);
    if (members.value("format"_L1) != report_format || members.value("version"_L1) != 1)
        throw host_error(error_kind::not_found, path + u" is no list of a report's files of this program"_s);
    report_record record;
    record.manifest_sha256 = members.value("manifest_sha256"_L1).toString();
    record.files = kept_files_from_json(members.value("files"_L1).toArray());
    for (const kept_file &file : std::as_const(record.files)) {
        if (!stays_below(file.path))
            throw host_error(error_kind::not_found, path + u" is forged: it names "_s + file.path);
    }
    return record;
}

QStringList report_folders_of(const case_layout &layout)
{
    QStringList folders = names_in(layout.directory());
    folders.removeIf([&layout](const QString &name) {
        const QString folder = layout.directory() + u'/' + name;
        return !is_folder(folder) || !path_exists(folder + u'/' + report_record_name);
    });
    return folders;
}

QString older_report_text(const QString &folder)
{
    return u"the report in "_s + folder
           + u" is older than the manifest, or of another case: \"report --force\" makes it anew"_s;
}

QStringList outdated_reports(const case_layout &layout, const QString &manifest_sha256)
{
    QStringList folders = report_folders_of(layout);
    folders.removeIf([&](const QString &name) {
        try {
            return read_report_record(layout.directory() + u'/' + name).manifest_sha256 == manifest_sha256;
        } catch (const host_error &) {
            return false;
        }
    });
    return folders;
}
