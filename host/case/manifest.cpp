// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/manifest.h"

#include "host/case/case_sources.h"
#include "host/case/kept_file.h"
#include "host/case/record_objections.h"
#include "host/files/doubled_member.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/new_file.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView record_format("bluetooth-logs source");
constexpr QLatin1StringView manifest_format("bluetooth-logs manifest");

/** What every record repeats of its case; the manifest takes it from the first one. */
constexpr QLatin1StringView repeated_members[] = {
    "tool"_L1, "system"_L1, "working_folder"_L1, "options"_L1, "examiner"_L1, "case_number"_L1, "case_sources"_L1,
};

/** A million sources of a thousand bytes each: what a program can still hold in memory as one document. */
constexpr qint64 most_manifest_bytes = qint64(1) << 30;

/** What all records of a case must agree on, and what the manifest says of the whole. */
struct case_heading
{
    int first_number = 0;
    QJsonObject members; ///< of the first record
    QString started;
    QString finished;
};

QString list_hash(const QJsonObject &members)
{
    return members.value("case_sources"_L1).toObject().value("sha256"_L1).toString();
}

case_heading read_heading(const case_layout &layout, const QList<int> &numbers)
{
    case_heading heading;
    for (const int number : numbers) {
        const kept_record record = read_source_record(layout, number);
        if (record.source.status == source_status::running)
            throw host_error(error_kind::refused, u"source "_s + QString::number(number) + u" still runs"_s);
        if (heading.first_number == 0) {
            heading.first_number = number;
            heading.members = record.members;
        }
        if (record.version() != heading.members.value("version"_L1).toInt())
            throw host_error(error_kind::refused, u"the records of source "_s + QString::number(heading.first_number)
                                                      + u" and source "_s + QString::number(number)
                                                      + u" are of different versions of the program"_s);
        if (list_hash(record.members) != list_hash(heading.members))
            throw host_error(error_kind::refused,
                             u"the records of source "_s + QString::number(heading.first_number) + u" and source "_s
                                 + QString::number(number) + u" are of different lists of sources: "_s
                                 + list_hash(heading.members) + u" and "_s + list_hash(record.members));
        const QString &started = record.source.started;
        if (!started.isEmpty() && (heading.started.isEmpty() || started < heading.started))
            heading.started = started;
        heading.finished = qMax(heading.finished, record.source.finished);
    }
    return heading;
}

QByteArray compact(const QJsonObject &json)
{
    return QJsonDocument(json).toJson(QJsonDocument::Compact);
}

bool is_known_version(const QJsonObject &members)
{
    const QJsonValue version = members.value("version"_L1);
    return version == 1 || version == case_version;
}

source_record not_run(int number, int version)
{
    source_record record;
    if (version > 1)
        record.files.emplace();
    record.number = number;
    record.status = source_status::not_run;
    record.messages = {{run_message::weight::error, u"this source of the case was not run"_s}};
    return record;
}

/** What the manifest says of a source: its record, and the file that holds it. */
source_record collected_record(const case_layout &layout, int number, int version)
{
    const source_layout source = layout.source(number);
    if (!path_exists(source.record()))
        return not_run(number, version);
    source_record record = read_source_record(layout, number).source;
    if (record.files) {
        const QString path = source.relative_to_case(source.record());
        const std::optional<kept_file> file = look_at_file(layout.directory(), path);
        if (!file)
            throw host_error(error_kind::not_found, source.record() + u" cannot be read"_s);
        record.files->append(*file);
    }
    return record;
}

/** Without the record itself, which does not list itself, and without what this program does not know. */
QJsonObject comparable(const source_layout &layout, const QJsonObject &entry)
{
    source_record record = source_record::from_json(entry);
    if (record.files)
        record.files->removeIf(
            [path = layout.relative_to_case(layout.record())](const kept_file &file) { return file.path == path; });
    return record.to_json();
}

} // namespace

kept_record read_source_record(const case_layout &layout, int number)
{
    const source_layout source = layout.source(number);
    kept_record record;
    record.members = read_json_file(source.record());
    if (record.members.value("format"_L1) != record_format || !is_known_version(record.members))
        throw host_error(error_kind::not_found, source.record() + u" is no record of this version of the program"_s);
    const QString objection = objection_to_record(record.members, number);
    if (!objection.isEmpty())
        throw host_error(error_kind::not_found, source.record() + u" is forged: "_s + objection);
    record.source = source_record::from_json(record.members);
    if (record.source.status == source_status::running && !file_lock::is_held(source.lock())) {
        record.source.status = source_status::interrupted;
        record.source.exit_code = int(outcome_code::interrupted);
        record.source.messages.append(
            {run_message::weight::error, u"interrupted: the run ended without a word, the result is incomplete"_s});
    }
    return record;
}

QList<int> recorded_sources(const case_layout &layout)
{
    QList<int> numbers;
    for (const int number : layout.source_numbers()) {
        if (path_exists(layout.source(number).record()))
            numbers.append(number);
    }
    return numbers;
}

void case_tally::add(const source_record &source)
{
    ++sources[source.status];
    ++codes[outcome_code(source.exit_code.value_or(int(outcome_code::partial)))];
    if (source.status != source_status::done)
        not_done.append(source.number);
}

outcome_code case_tally::code() const
{
    int count = 0;
    for (const int sources_with_code : codes)
        count += sources_with_code;
    if (codes.contains(outcome_code::evidence_changed))
        return outcome_code::evidence_changed;
    if (is_interrupted || codes.contains(outcome_code::interrupted))
        return outcome_code::interrupted;
    if (count > 0 && codes.value(outcome_code::no_evidence) == count)
        return outcome_code::no_evidence;
    return codes.value(outcome_code::done) == count ? outcome_code::done : outcome_code::partial;
}

case_tally collect_case(const case_layout &layout)
{
    const QList<int> recorded = recorded_sources(layout);
    if (recorded.isEmpty())
        throw host_error(error_kind::not_found, layout.directory() + u" holds no record of a source"_s);
    const case_heading heading = read_heading(layout, recorded);
    const QList<int> numbers = numbers_in(
        heading.members.value("case_sources"_L1).toObject().value("numbers"_L1).toString());
    const QSet<int> listed(numbers.cbegin(), numbers.cend());
    for (const int number : recorded) {
        if (!listed.contains(number))
            throw host_error(error_kind::refused,
                             u"source "_s + QString::number(number)
                                 + u" has a record and is not in the list of the case's sources"_s);
    }

    const int version = heading.members.value("version"_L1).toInt();
    QJsonObject head{{u"format"_s, QString(manifest_format)}, {u"version"_s, version}};
    for (const QLatin1StringView member : repeated_members) {
        if (heading.members.contains(member))
            head.insert(member, heading.members.value(member));
    }
    if (version > 1) {
        const std::optional<kept_file> notes = look_at_file(layout.directory(), u"notes.jsonl"_s);
        head.insert("notes"_L1, notes ? kept_files_to_json({*notes}).first() : QJsonValue());
    }
    head.insert("started"_L1, heading.started.isEmpty() ? QJsonValue() : QJsonValue(heading.started));
    head.insert("finished"_L1, heading.finished.isEmpty() ? QJsonValue() : QJsonValue(heading.finished));

    case_tally tally;
    new_file manifest(layout.manifest());
    sha256 hash;
    const auto write = [&manifest, &hash](const QByteArray &bytes) {
        manifest.add(bytes);
        hash.add(bytes);
    };
    write(compact(head).chopped(1) + ",\"sources\":[");
    bool is_first = true;
    for (const int number : numbers) {
        const source_record record = collected_record(layout, number, version);
        tally.add(record);
        write((is_first ? "\n" : ",\n") + compact(record.to_json()));
        is_first = false;
    }
    write("\n]}\n");
    // Whoever stops the program from here on leaves a manifest without its hash, and not with another one's.
    remove_file(layout.manifest_hash());
    manifest.commit();
    tally.manifest_sha256 = hash.result();
    write_whole_file(layout.manifest_hash(), tally.manifest_sha256.toLatin1() + "  manifest.json\n");
    return tally;
}

manifest_file read_manifest_file(const case_layout &layout)
{
    manifest_file file;
    file.bytes = read_whole_file(layout.manifest(), most_manifest_bytes);
    file.sha256 = sha256::of(file.bytes);
    return file;
}

QJsonObject manifest_members(const manifest_file &file)
{
    QJsonObject members = QJsonDocument::fromJson(file.bytes).object();
    if (members.value("format"_L1) != manifest_format)
        throw host_error(error_kind::not_found, u"manifest.json is no manifest of this program"_s);
    if (!is_known_version(members))
        throw host_error(error_kind::not_found, u"manifest.json is of another version of this program"_s);
    if (const std::optional<QString> name = doubled_member(file.bytes))
        throw host_error(error_kind::not_found,
                         u"manifest.json is forged: it gives the member \""_s + *name + u"\" twice"_s);
    const QString objection = objection_to_sources(members);
    if (!objection.isEmpty())
        throw host_error(error_kind::not_found, u"manifest.json is forged: "_s + objection);
    return members;
}

record_state compare_record(const case_layout &layout, const QJsonObject &manifest, const QJsonObject &entry)
{
    const int number = entry.value("number"_L1).toInt();
    const source_layout source = layout.source(number);
    const bool was_run = entry.value("status"_L1) != QString(status_name(source_status::not_run));
    if (!path_exists(source.record()))
        return was_run ? record_state::gone : record_state::alike;
    try {
        const source_record record = read_source_record(layout, number).source;
        if (was_run && comparable(source, record.to_json()) == comparable(source, entry))
            return record_state::alike;
        const bool is_newer = record.finished > manifest.value("finished"_L1).toString()
                              || record.status == source_status::running || !was_run;
        return is_newer ? record_state::newer : record_state::different;
    } catch (const host_error &) {
        return record_state::forged;
    }
}

QList<int> sources_unlike_manifest(const case_layout &layout, const QJsonObject &manifest)
{
    QList<int> numbers;
    for (const auto value : manifest.value("sources"_L1).toArray()) {
        const QJsonObject entry = value.toObject();
        if (compare_record(layout, manifest, entry) != record_state::alike)
            numbers.append(entry.value("number"_L1).toInt());
    }
    return numbers;
}
