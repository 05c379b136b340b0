// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_reservations.h"

#include "host/case/case_sources.h"
#include "host/case/manifest.h"
#include "host/case/report_record.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace {

QString source_or_sources(const QList<int> &numbers)
{
    return (numbers.size() == 1 ? u"source "_s : u"sources "_s) + ranges_of(numbers);
}

/** The sources that belong to the case, as the record of one of them says, and that have none. */
QList<int> never_begun(const case_layout &layout, const QList<int> &recorded)
{
    const QJsonObject record = read_source_record(layout, recorded.first()).members;
    const QString all = record.value("case_sources"_L1).toObject().value("numbers"_L1).toString();
    const QSet<int> present(recorded.cbegin(), recorded.cend());
    QList<int> missing;
    for (const int number : numbers_in(all)) {
        if (!present.contains(number))
            missing.append(number);
    }
    return missing;
}

} // namespace

case_reservations reservations_of(const case_layout &layout)
{
    case_reservations result;
    const QList<int> recorded = recorded_sources(layout);
    if (recorded.isEmpty())
        return result;
    const QList<int> missing = never_begun(layout, recorded);
    if (!missing.isEmpty())
        result.incomplete.append(u"the case is incomplete: no run of "_s + source_or_sources(missing) + u" began"_s);
    if (!path_exists(layout.manifest()))
        return result;
    try {
        const manifest_file manifest = read_manifest_file(layout);
        for (const QString &report : outdated_reports(layout, manifest.sha256))
            result.reports.append(older_report_text(report));
        const QList<int> newer = sources_unlike_manifest(layout, manifest_members(manifest));
        if (!newer.isEmpty())
            result.manifest.append(u"the manifest is older than "_s + source_or_sources(newer)
                                   + u": \"collect\" makes it anew"_s);
    } catch (const host_error &error) {
        result.manifest.append(error.message());
    }
    return result;
}
