// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/notices_before_run.h"

#include "host/source/evidence_files.h"
#include "host/source/evidence_folder.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool changes_access_times(const source_request &request)
{
    QStringList places{request.source.kind == &macos_kind ? listed_folder(request.source) : request.source.path};
    for (const QString &path : evidence_paths(request.source))
        places.append(request.source.root + path);
    return std::any_of(places.cbegin(), places.cend(), [](const QString &place) {
        return QFileInfo::exists(place) && reading_changes_access_time(place);
    });
}

} // namespace

QList<run_message> notices_before_run(const source_request &request)
{
    QList<run_message> messages;
    if (changes_access_times(request))
        messages.append({run_message::weight::warning,
                         u"reading will change access times of the evidence, since only its owner and root may keep "
                         "them: run as one of these, or mount the source read-only (mount -o ro) or without access "
                         "times (mount -o noatime)"_s});
    if (request.source.kind == &ios_uid_kind && !request.options.suite_tables)
        messages.append({run_message::weight::note,
                         u"the result tables get the columns that rows of iOS sources fill; --suite-tables leaves them "
                         "as the suite makes them"_s});
    return messages;
}
