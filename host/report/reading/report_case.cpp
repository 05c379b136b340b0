// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/report_case.h"

#include "host/case/manifest.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/source/macos_databases.h"
#include "host/source/source_kinds.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/** The text without the places where case and source lay: a report is read elsewhere. source.json has the whole text.
 */
QString without_places(QString text, const case_layout &layout, const source_record &record)
{
    static const QRegularExpression link(u"(leads out of the source), to .*?(: --follow-links|$)"_s,
                                         QRegularExpression::DotMatchesEverythingOption);
    text.replace(link, u"\\1\\2"_s);
    if (record.path.size() > 1) // of a system in use it is "/"
        text.replace(record.path, u"(source)"_s);
    return text.replace(layout.directory(), u"(case)"_s);
}

void add_source(report_case &result, source_record record)
{
    for (run_message &message : record.messages)
        message.text = without_places(message.text, result.layout, record);
    for (evidence_file &file : record.evidence.files)
        file.reason = without_places(file.reason, result.layout, record);
    const source_layout files = result.layout.source(record.number);
    report_source source{record,
                         record.name.isEmpty() ? source_name(record.number) : record.name,
                         {},
                         file_lock::is_held(files.lock())};
    const QString preferences = files.evidence_folder() + u'/' + macos_preferences_file;
    if (record.driven_as == macos_kind.name && path_exists(preferences))
        source.preferences = preferences_names(preferences);
    if (!source.preferences.problem().isEmpty())
        result.shortcomings.append(
            source.problem_text(macos_preferences_file + u": "_s + source.preferences.problem()));
    if (source.is_locked)
        result.shortcomings.append(source.problem_text(u"a run works on it, and its rows are left out"_s));
    else if (record.status != source_status::done)
        result.shortcomings.append(source.problem_text(status_name(record.status)));
    result.sources.append(source);
}

void read_manifest(report_case &result)
{
    const manifest_file file = read_manifest_file(result.layout);
    result.manifest_sha256 = file.sha256;
    QJsonObject manifest = manifest_members(file);
    const QJsonArray sources = manifest.value("sources"_L1).toArray();
    for (const QJsonValue source : sources)
        add_source(result, source_record::from_json(source.toObject()));
    for (const int number : sources_unlike_manifest(result.layout, manifest))
        result.shortcomings.append(u"source "_s + QString::number(number)
                                   + u" is not what the manifest says: it was done anew and not yet collected"_s);
    manifest.remove(u"sources"_s);
    result.heading = manifest;
}

void read_records(report_case &result)
{
    const QList<int> numbers = recorded_sources(result.layout);
    if (numbers.isEmpty())
        throw host_error(error_kind::not_found, u"there is no case in "_s + result.layout.directory());
    result.shortcomings.append(u"the case was not collected: it has no manifest"_s);
    for (const int number : numbers)
        add_source(result, read_source_record(result.layout, number).source);
}

void read_notes(report_case &result)
{
    try {
        result.notes = std::make_shared<note_list>(read_case_notes(result.layout));
    } catch (const host_error &error) {
        result.shortcomings.append(error.message().replace(result.layout.directory() + u'/', QString()));
    }
}

} // namespace

QByteArray report_source::why_no_hash(const QString &path) const
{
    const QString failure = u"cannot be hashed: "_s + path + u':';
    const bool has_failed = std::any_of(record.messages.cbegin(), record.messages.cend(),
                                        [&failure](const run_message &message) {
                                            return message.text.contains(failure);
                                        });
    return has_failed ? "not made: the file could not be read to its end" : "not made (--no-container-hash)";
}

report_case read_report_case(const QString &directory)
{
    report_case result{case_layout(directory), {}, {}, {}, {}, {}};
    if (path_exists(result.layout.manifest()))
        read_manifest(result);
    else
        read_records(result);
    read_notes(result);
    return result;
}
