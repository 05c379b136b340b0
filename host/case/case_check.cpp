// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_check.h"

#include "host/case/case_sources.h"
#include "host/case/evidence_check.h"
#include "host/case/file_comparison.h"
#include "host/case/kept_file.h"
#include "host/case/manifest.h"
#include "host/case/report_record.h"
#include "host/files/folder_listing.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using place = compared_file::place;
using finding = compared_file::finding;

constexpr qint64 most_hash_file_bytes = 1000;

QSet<QString> set_of(const QStringList &texts)
{
    return {texts.cbegin(), texts.cend()};
}

/** Compares one case; each function adds to the outcome. */
class case_check
{
public:
    explicit case_check(const check_request &check)
        : request(check)
        , layout(check.directory)
        , files(check.directory, outcome)
    {
    }

    check_outcome run()
    {
        if (!path_exists(layout.directory()))
            throw host_error(error_kind::not_found, u"there is no case "_s + layout.directory());
        if (!path_exists(layout.manifest())) {
            outcome.incomplete.append(u"the case has no manifest.json: \"collect\" makes it"_s);
            return outcome;
        }
        const manifest_file file = read_manifest_file(layout);
        outcome.manifest_sha256 = file.sha256;
        check_manifest_hash();
        QJsonObject manifest;
        try {
            manifest = manifest_members(file);
        } catch (const host_error &error) {
            outcome.differences.append(error.message());
            return outcome;
        }
        check_request_fits(manifest);
        check_sources(manifest);
        check_other_folders(manifest);
        check_reports();
        check_source_list(manifest);
        check_notes(manifest);
        check_entries();
        return outcome;
    }

private:
    /** The hash in manifest.json.sha256; empty when it holds none. */
    QString hash_beside() const
    {
        static const QRegularExpression form(u"^([0-9a-f]{64})  manifest[.]json\\n$"_s);
        try {
            const QByteArray content = read_whole_file(layout.manifest_hash(), most_hash_file_bytes);
            return form.match(QString::fromLatin1(content)).captured(1);
        } catch (const host_error &) {
            return {};
        }
    }

    void check_manifest_hash()
    {
        const QString &found = outcome.manifest_sha256;
        const QString noted = request.manifest_sha256.toLower();
        const bool is_beside = path_exists(layout.manifest_hash());
        const QString beside = is_beside ? hash_beside() : QString();
        const bool is_changed = noted.isEmpty() ? is_beside && beside != found : noted != found;
        outcome.files.append({place::manifest, u"manifest.json"_s, is_changed ? finding::changed : finding::unchanged,
                              noted.isEmpty() ? beside : noted, found});
        if (!noted.isEmpty() && noted != found)
            outcome.differences.append(u"manifest.json is not the one that was noted: its SHA-256 is "_s + found
                                       + u", and "_s + noted + u" was noted"_s);
        if (!is_beside)
            outcome.incomplete.append(u"unfinished: manifest.json.sha256 is not there; a \"collect\" that was stopped "
                                      "leaves a case so, and \"collect\" makes both anew"_s);
        else if (beside.isEmpty())
            outcome.differences.append(u"manifest.json.sha256 holds no hash of manifest.json"_s);
        else if (beside != found)
            outcome.differences.append(u"manifest.json and manifest.json.sha256 disagree: the SHA-256 of the one is "_s
                                       + found + u", the other says "_s + beside + who_changed(found, beside, noted));
        if (noted.isEmpty() && is_beside)
            outcome.notes.append(u"no hash was given by --manifest-sha256: manifest.json was compared with "
                                 "manifest.json.sha256 beside it alone, and an edit of both would pass"_s);
    }

    static QString who_changed(const QString &found, const QString &beside, const QString &noted)
    {
        if (noted == found)
            return u"; manifest.json is the one that was noted, manifest.json.sha256 was changed"_s;
        if (noted == beside)
            return u"; manifest.json.sha256 says what was noted, manifest.json was changed"_s;
        return u"; one of the two was changed"_s;
    }

    void check_request_fits(const QJsonObject &manifest) const
    {
        QSet<int> numbers;
        for (const auto source : manifest.value("sources"_L1).toArray())
            numbers.insert(source.toObject().value("number"_L1).toInt());
        for (const int number : request.moved_to.keys()) {
            if (!numbers.contains(number))
                throw host_error(error_kind::refused,
                                 u"--evidence names a source that the manifest has not, "_s + QString::number(number));
        }
    }

    void check_sources(const QJsonObject &manifest)
    {
        if (manifest.value("version"_L1) == 1)
            outcome.notes.append(u"the case is of version 1 of its format, which lists results and working copies "
                                 "alone: its other files were not compared"_s);
        for (const auto value : manifest.value("sources"_L1).toArray()) {
            const QJsonObject entry = value.toObject();
            const source_record source = source_record::from_json(entry);
            const record_state state = compare_record(layout, manifest, entry);
            check_record(source, state);
            check_status(source);
            if (state == record_state::newer)
                continue; // another run made what is there
            if (source.files)
                check_listed_files(source, state);
            else
                check_known_files(source);
            if (!request.leaves_out_evidence && !source.evidence.files.isEmpty())
                check_evidence(request, source, outcome);
        }
    }

    void check_record(const source_record &source, record_state state)
    {
        const QString record = source_name(source.number) + u"/source.json"_s;
        switch (state) {
        case record_state::alike:
            break;
        case record_state::gone:
            outcome.differences.append(record + u" is gone"_s);
            break;
        case record_state::newer:
            outcome.differences.append(record + u" is newer than the manifest: \"collect\" makes it anew"_s);
            break;
        case record_state::different:
            outcome.differences.append(record + u" is not what the manifest says"_s);
            break;
        case record_state::forged:
            outcome.differences.append(record + u" cannot be read as a record of this program"_s);
            break;
        }
    }

    void check_status(const source_record &source)
    {
        const QString name = source_name(source.number);
        if (source.status != source_status::done)
            outcome.incomplete.append(name + u": "_s + status_name(source.status));
        else if (source_kind_named(source.type) == &winos_kind && source.evidence.files.isEmpty())
            outcome.notes.append(name
                                 + u": nothing of a Windows source is read by this version, and none of it was "
                                   "compared"_s);
    }

    /** Every file that the manifest lists for a source, and every one that is there besides. */
    void check_listed_files(const source_record &source, record_state state)
    {
        const source_layout own = layout.source(source.number);
        const QString record = own.relative_to_case(own.record());
        QSet<QString> listed;
        for (const kept_file &file : *source.files) {
            listed.insert(file.path);
            if (file.path != record || state == record_state::alike)
                files.compare(layout.directory(), file, place::result);
        }
        check_agreement(source);
        // A run that was killed listed nothing: what it left is not whole, which its status says.
        if (!source.finished.isEmpty())
            files.add_unknown(layout.directory(), paths_or_fault(own.folder()),
                              listed + set_of({record, own.relative_to_case(own.lock())}), place::result);
    }

    /** What the manifest says twice, it must say alike. */
    void check_agreement(const source_record &source)
    {
        if (source.finished.isEmpty())
            return;
        QHash<QString, QString> hashes;
        for (const kept_file &file : *source.files)
            hashes.insert(file.path, file.sha256);
        for (const kept_file &known : known_files(source)) {
            if (hashes.value(known.path) != known.sha256)
                outcome.differences.append(u"manifest.json names two hashes of "_s + known.path);
        }
    }

    /** The result and the working copies, which a record names by themselves. */
    QList<kept_file> known_files(const source_record &source) const
    {
        QList<kept_file> known;
        if (!source.result_path.isEmpty())
            known.append({source.result_path, file_comparison::unknown_size, source.result_sha256});
        for (const evidence_file &file : source.evidence.files) {
            if (!file.copy_sha256.isEmpty())
                known.append({source_name(source.number) + u"/Evidence/"_s + file.path, file_comparison::unknown_size,
                              file.copy_sha256});
        }
        return known;
    }

    void check_known_files(const source_record &source)
    {
        for (const kept_file &file : known_files(source))
            files.compare(layout.directory(), file, place::result);
        for (const QLatin1StringView ending : {"-wal"_L1, "-journal"_L1, "-shm"_L1}) {
            const QString path = source.result_path + ending;
            if (!source.result_path.isEmpty() && path_exists(layout.directory() + u'/' + path))
                files.add_new(path, place::result);
        }
    }

    QStringList paths_or_fault(const QString &folder, const QString &root = {})
    {
        try {
            return paths_below(root.isEmpty() ? layout.directory() : root, folder);
        } catch (const host_error &error) {
            outcome.incomplete.append(error.message());
            return {};
        }
    }

    /** Folders of sources that the manifest does not have. */
    void check_other_folders(const QJsonObject &manifest)
    {
        QSet<int> numbers;
        for (const auto source : manifest.value("sources"_L1).toArray())
            numbers.insert(source.toObject().value("number"_L1).toInt());
        for (const int number : layout.source_numbers()) {
            if (!numbers.contains(number))
                outcome.differences.append(source_name(number) + u" is not in the manifest"_s);
        }
    }

    /** The list that --resume goes by says the same as the manifest. */
    void check_source_list(const QJsonObject &manifest)
    {
        if (!path_exists(layout.source_list()))
            return;
        try {
            const QList<named_source> listed = read_list_of_case(layout.source_list());
            if (sources_identity(listed) != manifest.value("case_sources"_L1).toObject()
                || !are_of_recorded_kinds(listed, manifest))
                outcome.differences.append(u"sources.json lists other sources than the manifest"_s);
            const QByteArray content = read_whole_file(layout.source_list(), most_json_bytes);
            if (QJsonDocument(source_list_json(listed)).toJson() != content)
                outcome.differences.append(u"sources.json was changed: this program writes it otherwise"_s);
        } catch (const host_error &error) {
            outcome.differences.append(u"sources.json is no list of sources: "_s + error.message());
        }
    }

    /** The kind that was asked for is that which was taken; most lists name none. */
    static bool are_of_recorded_kinds(const QList<named_source> &listed, const QJsonObject &manifest)
    {
        QHash<int, QString> types;
        for (const auto source : manifest.value("sources"_L1).toArray())
            types.insert(source[u"number"_s].toInt(), source[u"type"_s].toString());
        return std::all_of(listed.cbegin(), listed.cend(), [&types](const named_source &source) {
            const QString type = types.value(source.number);
            return !source.kind || type.isEmpty() || type == source.kind->name;
        });
    }

    /** Notes may be made at any time. */
    void check_notes(const QJsonObject &manifest)
    {
        const QJsonValue recorded = manifest.value("notes"_L1);
        const std::optional<kept_file> now = look_at_file(layout.directory(), u"notes.jsonl"_s);
        const QJsonValue found = now ? kept_files_to_json({*now}).first() : QJsonValue();
        if (!recorded.isUndefined() && recorded != found)
            outcome.notes.append(u"notes.jsonl was changed after the manifest was made"_s);
    }

    /** What else lies beside the manifest is nobody's fault, and nothing that it vouches for. */
    void check_entries()
    {
        QStringList known{u"manifest.json"_s, u"manifest.json.sha256"_s, u"notes.jsonl"_s,
                          QFileInfo(layout.source_list()).fileName(), u".lock"_s};
        known += report_folders_of(layout);
        for (const int number : layout.source_numbers())
            known.append(source_name(number));
        const QSet<QString> names = set_of(known);
        for (const QString &entry : names_in(layout.directory())) {
            if (!names.contains(entry))
                outcome.notes.append(entry + u" is listed nowhere, and was not compared"_s);
        }
    }

    void check_reports()
    {
        for (const QString &name : report_folders_of(layout))
            check_report(layout.directory() + u'/' + name);
        for (const QString &folder : request.report_folders)
            check_report(folder);
    }

    void check_report(const QString &folder)
    {
        try {
            const report_record report = read_report_record(folder);
            const QString name = source_layout(layout.directory(), 0).relative_to_case(folder);
            if (report.manifest_sha256 != outcome.manifest_sha256)
                outcome.notes.append(older_report_text(name));
            QSet<QString> listed{QString(report_record_name)};
            for (const kept_file &file : report.files) {
                listed.insert(file.path);
                files.compare(folder, file, place::report);
            }
            files.add_unknown(folder, paths_or_fault(folder, folder), listed, place::report);
        } catch (const host_error &error) {
            outcome.differences.append(error.message());
        }
    }

    const check_request &request;
    case_layout layout;
    check_outcome outcome;
    file_comparison files;
};

} // namespace

check_outcome check_case(const check_request &request)
{
    return case_check(request).run();
}
