// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/source_container.h"

#include "host/container/backup_store.h"
#include "host/container/container_format.h"
#include "host/container/disk_image.h"
#include "host/container/folder_store.h"
#include "host/files/host_error.h"
#include "host/text/json_member.h"

#include <QFileInfo>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

using guessed = container_guess::kind;

/** A store that somebody else keeps. */
class borrowed_store : public evidence_store
{
public:
    explicit borrowed_store(archive_store &kept)
        : store(kept)
    {
    }

    void visit(const evidence_search &search, const file_taker &take) override
    {
        store.visit(search, take);
    }
    void pass_over_others() override
    {
        store.pass_over_others();
    }
    QString damage() const override
    {
        return store.damage();
    }
    QStringList warnings() const override
    {
        return store.warnings();
    }

private:
    archive_store &store;
};

class archive_container : public source_container
{
public:
    archive_container(const QString &archive_path, const opening &how)
        : archive(open_archive(archive_path, !how.kind || how.kind == &ios_uid_kind, how.observers))
    {
    }

    container_facts facts() const override
    {
        container_facts known;
        known.kind = archive->is_single_file() ? u"compressed"_s : u"archive"_s;
        known.format = archive->format();
        known.files = {archive->file()};
        return known;
    }

    std::unique_ptr<evidence_store> store(int) override
    {
        return std::make_unique<borrowed_store>(*archive);
    }

private:
    std::unique_ptr<archive_store> archive;
};

/** A folder that evidence is copied from, since it does not stand where the plug-in looks. */
class folder_container : public source_container
{
public:
    folder_container(const QString &folder, bool links_leave)
        : path(folder)
        , follow_links(links_leave)
    {
    }

    container_facts facts() const override
    {
        return {};
    }

    std::unique_ptr<evidence_store> store(int) override
    {
        return open_folder(path, follow_links);
    }

private:
    QString path;
    bool follow_links;
};

/** Whether something of iOS stands in the folder, and nothing of macOS. */
bool is_ios_folder(const QString &folder)
{
    const auto holds = [&folder](const source_kind &kind) {
        bool is_there = false;
        open_folder(folder, false)
            ->visit(evidence_search(&kind), [&is_there, &kind](const stored_file &file, byte_stream *) {
                const std::optional<evidence_match> match = evidence_search(&kind).match(file.parts);
                is_there = is_there || (match && match->is_a_sign);
            });
        return is_there;
    };
    return !holds(macos_kind) && holds(ios_files_kind);
}

[[noreturn]] void refuse(const QString &path, const QString &reason)
{
    throw host_error(error_kind::not_found, u"the source cannot be read: "_s + path + u": "_s + reason);
}

std::unique_ptr<source_container> open_folder_container(const QString &path, const opening &how)
{
    if (is_sparse_bundle(path))
        refuse(path, u"it is a sparse bundle of macOS, which this program does not read"_s);
    if (how.kind == &ios_backup_kind || (!how.kind && is_backup_folder(path)))
        return open_backup(path, {}, how.observers);
    if (how.kind == &ios_files_kind || (!how.kind && is_ios_folder(path)))
        return std::make_unique<folder_container>(path, how.follow_links);
    return nullptr;
}

} // namespace

QJsonObject container_facts::to_json() const
{
    QJsonArray file_list;
    for (const container_file &file : files)
        file_list.append(file.to_json());
    QJsonValue hashes;
    if (!md5.isEmpty() || !sha1.isEmpty())
        hashes = QJsonObject{{u"md5"_s, text_or_null(md5)}, {u"sha1"_s, text_or_null(sha1)}};
    QJsonValue taken;
    if (volume)
        taken = QJsonObject{{u"number"_s, volume->number},
                            {u"offset"_s, volume->offset},
                            {u"file_system"_s, text_or_null(volume->file_system)},
                            {u"name"_s, text_or_null(volume->name)}};
    return {{u"kind"_s, kind},
            {u"format"_s, format},
            {u"files"_s, file_list},
            {u"stored_hashes"_s, hashes},
            {u"volume"_s, taken}};
}

std::unique_ptr<source_container> open_container(const QString &path, const opening &how)
{
    if (QFileInfo(path).isDir())
        return open_folder_container(path, how);
    const container_guess guess = guess_container(path);
    switch (guess.what) {
    case guessed::refused:
        refuse(path, refusal_of(guess, path));
    case guessed::image:
        return open_image(path, guess.format);
    case guessed::archive:
    case guessed::compressed:
        if (how.kind == &ios_backup_kind)
            return open_backup(path, how.member, how.observers);
        return std::make_unique<archive_container>(path, how);
    case guessed::none:
        break;
    }
    return nullptr;
}

bool is_container(const QString &path, const source_kind *kind)
{
    if (QFileInfo(path).isDir())
        return kind ? kind == &ios_files_kind || kind == &ios_backup_kind
                    : is_sparse_bundle(path) || is_backup_folder(path) || is_ios_folder(path);
    return guess_container(path).what != guessed::none;
}
