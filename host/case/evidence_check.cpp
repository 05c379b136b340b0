// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/evidence_check.h"

#include "host/case/file_comparison.h"
#include "host/files/file_times.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_look.h"
#include "host/source/macos_databases.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

using place = compared_file::place;
using finding = compared_file::finding;

/** Evidence that may not be looked at is as far away as evidence that is elsewhere. */
bool is_within_reach(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0;
}

/** Compares the evidence of one source; each function adds to the outcome. */
class evidence_check
{
public:
    evidence_check(const check_request &check, const source_record &source, check_outcome &found)
        : request(check)
        , recorded(source)
        , name(source_name(source.number))
        , moved(check.moved_to.value(source.number))
        , outcome(found)
        , files(check.directory, found)
    {
    }

    void run()
    {
        if (recorded.container.isObject() || is_taken_out()) {
            check_container();
            return;
        }
        const QString path = moved.isEmpty() ? recorded.path : moved;
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
            compare(recorded.evidence.files.at(i), now.files.at(i));
        if (!is_log)
            compare_listings(now);
    }

private:
    bool is_taken_out() const
    {
        return std::any_of(recorded.evidence.files.cbegin(), recorded.evidence.files.cend(),
                           [](const evidence_file &file) { return file.origin.isObject(); });
    }

    /** The files of the container that the evidence was taken out of, or those of the folder. */
    void check_container()
    {
        const QJsonArray segments = recorded.container[u"files"_s].toArray();
        for (const auto value : segments) {
            const QString path = value[u"path"_s].toString();
            // The further files of a container stand beside its first one.
            const QString now = moved.isEmpty()            ? path
                                : QFileInfo(moved).isDir() ? moved + u'/' + QFileInfo(path).fileName()
                                : path == segments.first()[u"path"_s].toString()
                                    ? moved
                                    : QFileInfo(moved).path() + u'/' + QFileInfo(path).fileName();
            check_container_file(now, value.toObject());
            if (path == segments.first()[u"path"_s].toString() && is_within_reach(now))
                check_stored_hashes(now, recorded.container[u"stored_hashes"_s].toObject());
        }
        if (!segments.isEmpty())
            return;
        for (const evidence_file &file : recorded.evidence.files) {
            if (file.origin.isObject() && file.before && !file.before->sha256.isEmpty())
                files.compare(moved.isEmpty() ? recorded.path : moved,
                              {file.origin[u"path"_s].toString(), file_comparison::unknown_size, file.before->sha256},
                              place::evidence);
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
        for (const auto &[member, kind] : {std::pair("md5"_L1, "MD5"_L1), std::pair("sha1"_L1, "SHA-1"_L1)}) {
            const QString expected = stored.value(member).toString();
            if (expected.isEmpty())
                continue;
            const QString now = found.value(member).toString();
            if (now == expected)
                outcome.notes.append(image + u": what it holds has the "_s + kind + u" that stands in it"_s);
            else
                outcome.differences.append(image + u": what it holds has the "_s + kind + u' ' + now + u", and not "_s
                                           + expected + u", which stands in it"_s);
        }
    }

    void check_container_file(const QString &file, const QJsonObject &segment)
    {
        struct stat status = {};
        if (::stat(QFile::encodeName(file).constData(), &status) != 0) {
            outcome.missing.append(name + u": the evidence is not there: "_s + file);
            return;
        }
        const QString hash = segment.value("sha256"_L1).toString();
        const bool is_hashed = request.hashes_containers && !hash.isEmpty();
        const QFileInfo behind_links(QFileInfo(file).canonicalFilePath());
        const qint64 size = segment.value("size"_L1).toInteger();
        const bool is_resized = qint64(status.st_size) != size;
        const bool has_other_times = utc_text(modification_time(status)) != segment.value("modified"_L1).toString();
        const bool is_modified = has_other_times && !is_hashed && moved.isEmpty();
        if (is_hashed)
            files.compare(behind_links.path(), {behind_links.fileName(), file_comparison::unknown_size, hash},
                          place::evidence);
        else
            outcome.files.append(
                {place::evidence, file, is_resized || is_modified ? finding::changed : finding::unchanged, {}, {}});
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

    void compare(const evidence_file &before, const evidence_file &found)
    {
        const std::optional<file_state> &was = before.after ? before.after : before.before;
        const std::optional<file_state> &is = found.after;
        const QString file = name + u": "_s + before.path;
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
        outcome.files.append(compared);
    }

    void compare_listings(const evidence_state &now)
    {
        const evidence_state &then = recorded.evidence;
        const QStringList &before = then.listing_after.isEmpty() ? then.listing_before : then.listing_after;
        compare_entries(now.listing_after, before, u" was not there before"_s);
        compare_entries(before, now.listing_after, u" is gone"_s);
    }

    void compare_entries(const QStringList &entries, const QStringList &others, const QString &what)
    {
        const QSet<QString> known(others.cbegin(), others.cend());
        for (const QString &entry : entries) {
            if (!known.contains(entry))
                outcome.differences.append(name + u": "_s + macos_database_folder + entry + what);
        }
    }

    const check_request &request;
    const source_record &recorded;
    const QString name;
    const QString moved; ///< where the evidence lies now; empty: where it was
    check_outcome &outcome;
    file_comparison files;
};

} // namespace

void check_evidence(const check_request &request, const source_record &recorded, check_outcome &outcome)
{
    evidence_check(request, recorded, outcome).run();
}
