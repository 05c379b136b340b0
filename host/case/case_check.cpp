// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_check.h"

#include "host/case/case_sources.h"
#include "host/case/kept_file.h"
#include "host/case/manifest.h"
#include "host/case/report_record.h"
#include "host/files/file_hash.h"
#include "host/files/file_times.h"
#include "host/files/folder_listing.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_look.h"
#include "host/source/macos_databases.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 unknown_size = -1; ///< of a file whose content alone is compared

using place = compared_file::place;
using finding = compared_file::finding;

constexpr qint64 most_hash_file_bytes = 1000;
constexpr qint64 most_list_bytes = qint64(1) << 30;

QSet<QString> set_of(const QStringList &texts)
{
    return {texts.cbegin(), texts.cend()};
}

/** Evidence that may not be looked at is as far away as evidence that is elsewhere. */
bool is_within_reach(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0;
}

/** Compares one case; each function adds to the outcome. */
class case_check
{
public:
    explicit case_check(const check_request &check)
        : request(check)
        , layout(check.directory)
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
        add({place::manifest, u"manifest.json"_s, is_changed ? finding::changed : finding::unchanged,
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
                check_evidence(source);
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
        const source_layout files = layout.source(source.number);
        const QString record = files.relative_to_case(files.record());
        QSet<QString> listed;
        for (const kept_file &file : *source.files) {
            listed.insert(file.path);
            if (file.path != record || state == record_state::alike)
                check_file(layout.directory(), file, place::result);
        }
        check_agreement(source);
        // A run that was killed listed nothing: what it left is not whole, which its status says.
        if (!source.finished.isEmpty())
            check_added(layout.directory(), paths_or_fault(files.folder()),
                        listed + set_of({record, files.relative_to_case(files.lock())}), place::result);
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
        QList<kept_file> files;
        if (!source.result_path.isEmpty())
            files.append({source.result_path, -1, source.result_sha256});
        for (const evidence_file &file : source.evidence.files) {
            if (!file.copy_sha256.isEmpty())
                files.append({source_name(source.number) + u"/Evidence/"_s + file.path, -1, file.copy_sha256});
        }
        return files;
    }

    void check_known_files(const source_record &source)
    {
        for (const kept_file &file : known_files(source))
            check_file(layout.directory(), file, place::result);
        for (const QLatin1StringView ending : {"-wal"_L1, "-journal"_L1, "-shm"_L1}) {
            const QString path = source.result_path + ending;
            if (!source.result_path.isEmpty() && path_exists(layout.directory() + u'/' + path))
                add_new_file(path, place::result);
        }
    }

    /** A file whose size and hash are known; one of another size is not read. A size of -1 is not known. */
    void check_file(const QString &root, const kept_file &expected, place kind)
    {
        const QString path = root + u'/' + expected.path;
        compared_file file{kind, shown(root, expected.path), finding::unchanged, expected.sha256, {}};
        const qint64 size = QFileInfo(path).size();
        if (!path_exists(path)) {
            file.outcome = finding::missing;
            outcome.differences.append(file.path + u" is gone"_s);
        } else if (QFileInfo(path).isFile() && expected.size >= 0 && size != expected.size) {
            file.outcome = finding::changed;
            outcome.differences.append(file.path + u" was changed: it had "_s + QString::number(expected.size)
                                       + u" bytes and has "_s + QString::number(size));
        } else if (const std::optional<kept_file> now = look_at_file(root, expected.path); !now) {
            file.outcome = finding::unreadable;
            outcome.differences.append(file.path + u" cannot be read"_s);
        } else if (file.found = now->sha256; now->sha256 != expected.sha256) {
            file.outcome = finding::changed;
            outcome.differences.append(file.path + u" was changed: its SHA-256 was "_s + expected.sha256 + u" and is "_s
                                       + now->sha256);
        }
        add(file);
    }

    QString shown(const QString &root, const QString &path) const
    {
        return source_layout(layout.directory(), 0).relative_to_case(root + u'/' + path);
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

    void check_added(const QString &root, const QStringList &paths, const QSet<QString> &known, place kind)
    {
        for (const QString &path : paths) {
            if (!known.contains(path))
                add_new_file(shown(root, path), kind);
        }
    }

    void add_new_file(const QString &path, place kind)
    {
        add({kind, path, finding::added, {}, {}});
        outcome.differences.append(path + u" is new: nothing lists it"_s);
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
            const QByteArray content = read_whole_file(layout.source_list(), most_list_bytes);
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
                check_file(folder, file, place::report);
            }
            check_added(folder, paths_or_fault(folder, folder), listed, place::report);
        } catch (const host_error &error) {
            outcome.differences.append(error.message());
        }
    }

    static bool is_taken_out(const source_record &recorded)
    {
        return std::any_of(recorded.evidence.files.cbegin(), recorded.evidence.files.cend(),
                           [](const evidence_file &file) { return file.origin.isObject(); });
    }

    /** The files of the container that the evidence was taken out of, or those of the folder. */
    void check_container(const source_record &recorded)
    {
        const QString name = source_name(recorded.number);
        const QString moved = request.moved_to.value(recorded.number);
        const QJsonArray files = recorded.container[u"files"_s].toArray();
        for (const auto value : files) {
            const QString path = value[u"path"_s].toString();
            // The further files of a container stand beside its first one.
            const QString now = moved.isEmpty()            ? path
                                : QFileInfo(moved).isDir() ? moved + u'/' + QFileInfo(path).fileName()
                                : path == files.first()[u"path"_s].toString()
                                    ? moved
                                    : QFileInfo(moved).path() + u'/' + QFileInfo(path).fileName();
            check_container_file(name, now, value.toObject());
            if (path == files.first()[u"path"_s].toString() && is_within_reach(now))
                check_stored_hashes(now, recorded.container[u"stored_hashes"_s].toObject());
        }
        if (!files.isEmpty())
            return;
        for (const evidence_file &file : recorded.evidence.files) {
            if (file.origin.isObject() && file.before && !file.before->sha256.isEmpty())
                check_file(moved.isEmpty() ? recorded.path : moved,
                           {file.origin[u"path"_s].toString(), unknown_size, file.before->sha256}, place::evidence);
        }
    }

    /** What an EWF holds is to have the hashes that stand in it since it was made. */
    void check_stored_hashes(const QString &image, const QJsonObject &stored)
    {
        if (!request.hashes_containers || !request.rehash_image || stored.isEmpty())
            return;
        const QJsonObject found = request.rehash_image(image);
        if (const QString problem = found.value("problem"_L1).toString(); !problem.isEmpty()) {
            outcome.differences.append(image + u": what it holds cannot be hashed: "_s + problem);
            return;
        }
        for (const auto &[member, name] : {std::pair("md5"_L1, "MD5"_L1), std::pair("sha1"_L1, "SHA-1"_L1)}) {
            const QString expected = stored.value(member).toString();
            if (expected.isEmpty())
                continue;
            const QString now = found.value(member).toString();
            if (now == expected)
                outcome.notes.append(image + u": what it holds has the "_s + name + u" that stands in it"_s);
            else
                outcome.differences.append(image + u": what it holds has the "_s + name + u' ' + now + u", and not "_s
                                           + expected + u", which stands in it"_s);
        }
    }

    void check_container_file(const QString &name, const QString &file, const QJsonObject &recorded)
    {
        struct stat status = {};
        if (::stat(QFile::encodeName(file).constData(), &status) != 0) {
            outcome.missing.append(name + u": the evidence is not there: "_s + file);
            return;
        }
        const QString hash = recorded.value("sha256"_L1).toString();
        const bool is_hashed = request.hashes_containers && !hash.isEmpty();
        const QFileInfo behind_links(QFileInfo(file).canonicalFilePath());
        const qint64 size = recorded.value("size"_L1).toInteger();
        const bool is_resized = qint64(status.st_size) != size;
        const bool has_other_times = utc_text(modification_time(status)) != recorded.value("modified"_L1).toString();
        const bool is_modified = has_other_times && !is_hashed && request.moved_to.isEmpty();
        if (is_hashed)
            check_file(behind_links.path(), {behind_links.fileName(), unknown_size, hash}, place::evidence);
        else
            add({place::evidence, file, is_resized || is_modified ? finding::changed : finding::unchanged, {}, {}});
        if (request.hashes_containers && hash.isEmpty())
            outcome.notes.append(file + u" was not hashed when its evidence was taken out"_s);
        if (is_resized)
            outcome.differences.append(file + u" was changed: it had "_s + QString::number(size) + u" bytes, and has "_s
                                       + QString::number(qint64(status.st_size)));
        else if (has_other_times)
            (is_modified ? outcome.differences : outcome.notes)
                .append(file
                        + (is_hashed ? u" has other times, and the same size"_s : u" was modified, by its time"_s));
    }

    void check_evidence(const source_record &recorded)
    {
        if (recorded.container.isObject() || is_taken_out(recorded)) {
            check_container(recorded);
            return;
        }
        const QString path = request.moved_to.value(recorded.number, recorded.path);
        const QString name = source_name(recorded.number);
        if (!is_within_reach(path)) {
            outcome.missing.append(name + u": the evidence is not there: "_s + path);
            return;
        }
        outcome.evidence_places.append(path);
        evidence_source source;
        source.kind = source_kind_named(recorded.type);
        source.path = path;
        const bool is_log = source.kind == &ios_uid_kind;
        source.root = (is_log ? QFileInfo(path).path() : path) + u'/';
        source.log_file = is_log ? path : QString();

        evidence_state now;
        now.files = recorded.evidence.files;
        look_after(now, source, [](qint64) {});
        for (qsizetype i = 0; i < now.files.size(); ++i)
            compare(name, recorded.evidence.files.at(i), now.files.at(i));
        if (!is_log)
            compare_listings(name, recorded.evidence, now);
    }

    void compare(const QString &name, const evidence_file &recorded, const evidence_file &found)
    {
        const std::optional<file_state> &was = recorded.after ? recorded.after : recorded.before;
        const std::optional<file_state> &is = found.after;
        const QString file = name + u": "_s + recorded.path;
        if (!was && !is)
            return;
        compared_file compared{place::evidence, file, finding::unchanged, was ? was->sha256 : QString(),
                               is ? is->sha256 : QString()};
        if (!was || !is) {
            compared.outcome = is ? finding::added : finding::missing;
            outcome.differences.append(file + (is ? u" was not there before"_s : u" is gone"_s));
        } else if (was->size != is->size || was->sha256 != is->sha256) {
            compared.outcome = finding::changed;
            outcome.differences.append(file + u" was changed: it had "_s + QString::number(was->size)
                                       + u" bytes and the SHA-256 "_s + was->sha256 + u", and has "_s
                                       + QString::number(is->size) + u" bytes and "_s + is->sha256);
        } else if (was->modified != is->modified || was->changed != is->changed) {
            outcome.notes.append(file + u" has other times, and the same content"_s);
        }
        add(compared);
    }

    void compare_listings(const QString &name, const evidence_state &recorded, const evidence_state &now)
    {
        const QStringList &before = recorded.listing_after.isEmpty() ? recorded.listing_before : recorded.listing_after;
        compare_entries(name, now.listing_after, set_of(before), u" was not there before"_s);
        compare_entries(name, before, set_of(now.listing_after), u" is gone"_s);
    }

    void compare_entries(const QString &name, const QStringList &entries, const QSet<QString> &others,
                         const QString &what)
    {
        for (const QString &entry : entries) {
            if (!others.contains(entry))
                outcome.differences.append(name + u": "_s + macos_database_folder + entry + what);
        }
    }

    void add(const compared_file &file)
    {
        outcome.files.append(file);
    }

    const check_request &request;
    case_layout layout;
    check_outcome outcome;
};

} // namespace

check_outcome check_case(const check_request &request)
{
    return case_check(request).run();
}
