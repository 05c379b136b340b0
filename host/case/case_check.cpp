// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_check.h"

#include "host/case/manifest.h"
#include "host/files/file_hash.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/source/evidence_look.h"
#include "host/source/macos_databases.h"

#include <QFileInfo>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

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
        check_manifest_hash(file.sha256);
        QJsonObject manifest;
        try {
            manifest = manifest_members(file);
        } catch (const host_error &error) {
            outcome.differences.append(error.message());
            return outcome;
        }
        check_records(manifest);
        for (const auto value : manifest.value("sources"_L1).toArray())
            check_source(source_record::from_json(value.toObject()));
        return outcome;
    }

private:
    void check_manifest_hash(const QString &found)
    {
        QString expected = request.manifest_sha256.toLower();
        if (expected.isEmpty() && path_exists(layout.manifest_hash()))
            expected = QString::fromLatin1(read_whole_file(layout.manifest_hash(), 1000)).section(u' ', 0, 0);
        else if (expected.isEmpty())
            outcome.differences.append(u"manifest.json.sha256 is gone: whether the manifest was edited cannot be told "
                                       "without --manifest-sha256"_s);
        if (!expected.isEmpty() && expected != found)
            outcome.differences.append(u"manifest.json was edited: its SHA-256 was "_s + expected + u" and is "_s
                                       + found);
        ++outcome.files_compared;
    }

    /** A source that was done anew and not collected, or a record that was edited. */
    void check_records(const QJsonObject &manifest)
    {
        const QString finished = manifest.value("finished"_L1).toString();
        for (const int number : sources_unlike_manifest(layout, manifest)) {
            const QString record = source_name(number) + u"/source.json"_s;
            if (!path_exists(layout.source(number).record())) {
                outcome.differences.append(record + u" is gone"_s);
                continue;
            }
            const kept_record kept = read_source_record(layout, number);
            const bool is_newer = kept.source.finished > finished || kept.source.status == source_status::running;
            outcome.differences.append(record
                                       + (is_newer ? u" is newer than the manifest: \"collect\" makes it anew"_s
                                                   : u" is not what the manifest says"_s));
        }
    }

    void check_source(const source_record &source)
    {
        const QString name = source_name(source.number);
        if (source.status == source_status::not_run || source.status == source_status::interrupted)
            outcome.incomplete.append(name + u": "_s + status_name(source.status));
        if (!source.result_path.isEmpty())
            check_file(source.result_path, layout.directory() + u'/' + source.result_path, source.result_sha256);
        for (const evidence_file &file : source.evidence.files) {
            const QString copy = layout.source(source.number).evidence_folder() + u'/' + file.path;
            if (!file.copy_sha256.isEmpty())
                check_file(name + u"/Evidence/"_s + file.path, copy, file.copy_sha256);
        }
        if (!request.leaves_out_evidence && !source.evidence.files.isEmpty())
            check_evidence(source);
    }

    /** A file of the case. */
    void check_file(const QString &name, const QString &path, const QString &expected)
    {
        ++outcome.files_compared;
        const std::optional<QString> found = hash_of_file(path);
        if (!found)
            outcome.differences.append(name + (path_exists(path) ? u" cannot be read"_s : u" is gone"_s));
        else if (*found != expected)
            outcome.differences.append(name + u" was changed: its SHA-256 was "_s + expected + u" and is "_s + *found);
    }

    void check_evidence(const source_record &recorded)
    {
        const QString path = request.moved_to.value(recorded.number, recorded.path);
        const QString name = source_name(recorded.number);
        if (!path_exists(path)) {
            outcome.missing.append(name + u": the evidence is not there: "_s + path);
            return;
        }
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
        ++outcome.files_compared;
        const std::optional<file_state> &was = recorded.after ? recorded.after : recorded.before;
        const std::optional<file_state> &is = found.after;
        const QString file = name + u": "_s + recorded.path;
        if (!was && !is)
            return;
        if (!was || !is)
            outcome.differences.append(file + (is ? u" was not there before"_s : u" is gone"_s));
        else if (was->size != is->size || was->sha256 != is->sha256)
            outcome.differences.append(file + u" was changed: it had "_s + QString::number(was->size)
                                       + u" bytes and the SHA-256 "_s + was->sha256 + u", and has "_s
                                       + QString::number(is->size) + u" bytes and "_s + is->sha256);
        else if (was->modified != is->modified || was->changed != is->changed)
            outcome.notes.append(file + u" has other times, and the same content"_s);
    }

    void compare_listings(const QString &name, const evidence_state &recorded, const evidence_state &now)
    {
        const QStringList &before = recorded.listing_after.isEmpty() ? recorded.listing_before : recorded.listing_after;
        for (const QString &entry : now.listing_after) {
            if (!before.contains(entry))
                outcome.differences.append(name + u": "_s + macos_database_folder + entry + u" was not there before"_s);
        }
        for (const QString &entry : before) {
            if (!now.listing_after.contains(entry))
                outcome.differences.append(name + u": "_s + macos_database_folder + entry + u" is gone"_s);
        }
    }

    const check_request &request;
    case_layout layout;
    check_outcome outcome;
};

} // namespace

outcome_code check_outcome::code() const
{
    if (!differences.isEmpty())
        return outcome_code::evidence_changed;
    if (!incomplete.isEmpty())
        return outcome_code::partial;
    return missing.isEmpty() ? outcome_code::done : outcome_code::no_evidence;
}

check_outcome check_case(const check_request &request)
{
    return case_check(request).run();
}
