// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/backup_store.h"

#include "common/platform/property_list.h"
#include "common/property_list/property_list_guard.h"
#include "host/container/evidence_collector.h"
#include "host/container/file_stream.h"
#include "host/files/file_times.h"
#include "host/files/host_error.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_folder.h"
#include "host/source/macos_databases.h"
#include "host/sqlite/sqlite.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QVariantMap>

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView index_name("Manifest.db");
constexpr QLatin1StringView properties_name("Manifest.plist");
constexpr QLatin1StringView bluetooth_domain("SysSharedContainerDomain-systemgroup.com.apple.bluetooth");
constexpr QLatin1StringView database_folder("Library/Database/");
constexpr QLatin1StringView preferences_path("Library/Preferences/com.apple.MobileBluetooth.devices.plist");
constexpr qint64 most_index_bytes = qint64(1) << 30;  // it is held in memory
constexpr qint64 most_bytes_kept = qint64(256) << 20; // of an archive, until it is known what its index lists
constexpr int most_files = 1000;

/** The path that stands for a file of the domain: as on the device, below a group of this name. */
const QStringList group_folder{u"containers"_s, u"Shared"_s, u"SystemGroup"_s, u"backup"_s};

[[noreturn]] void fail(const QString &path, const QString &reason)
{
    throw host_error(error_kind::not_found, u"the backup cannot be read: "_s + path + u": "_s + reason);
}

/** All bytes of a stream, which its container says has @p said_size. Throws stream_failure, also for more than @p most.
 */
QByteArray content_of(byte_stream &stream, std::optional<qint64> said_size, qint64 most)
{
    QByteArray content;
    content.reserve(qBound<qint64>(0, said_size.value_or(0), most));
    QByteArray block(1 << 16, Qt::Uninitialized);
    while (const qsizetype count = stream.read(block.data(), block.size())) {
        if (content.size() + count > most)
            throw stream_failure(u"it is larger than "_s + QString::number(most >> 20) + u" MiB"_s, true);
        content.append(block.constData(), count);
    }
    return content;
}

/** Where a backup stores a file of the domain. */
QString place_of(const QString &path)
{
    const QByteArray name = QByteArray(bluetooth_domain.data(), bluetooth_domain.size()) + '-' + path.toUtf8();
    const QString id = QString::fromLatin1(QCryptographicHash::hash(name, QCryptographicHash::Sha1).toHex());
    return id.first(2) + u'/' + id;
}

/** Gives files by their paths below the folder of the backup; those that are not there are not given. */
class backup_files
{
public:
    virtual ~backup_files() = default;
    virtual void take(const QStringList &paths, const file_taker &take) = 0;
    virtual container_facts facts() const = 0;
    /** Those that are not hashed while they are read. */
    virtual void hash_files(const read_observer &)
    {
    }
    /** As of a store, of what was taken last. */
    virtual QString damage() const
    {
        return {};
    }
    virtual QStringList warnings() const
    {
        return {};
    }
};

class folder_files : public backup_files
{
public:
    explicit folder_files(const QString &path)
        : folder(path)
    {
        for (const QLatin1StringView name : {index_name, properties_name})
            manifests.append(file_now(folder + u'/' + name));
    }

    void take(const QStringList &paths, const file_taker &take) override
    {
        for (const QString &path : paths)
            take_one(path, take);
    }

    container_facts facts() const override
    {
        container_facts known;
        known.format = u"folder"_s;
        known.files = manifests;
        return known;
    }

    void hash_files(const read_observer &hashed) override
    {
        for (container_file &manifest : manifests)
            hash_file(manifest, hashed);
    }

private:
    void take_one(const QString &path, const file_taker &take) const
    {
        const QString place = folder + u'/' + path;
        struct stat status = {};
        if (::lstat(QFile::encodeName(place).constData(), &status) != 0)
            return;
        stored_file file;
        file.parts = path.split(u'/');
        file.origin.path = path;
        file.origin.inode = quint64(status.st_ino);
        file.origin.size = qint64(status.st_size);
        file.origin.modified = utc_text(modification_time(status));
        descriptor opened;
        if (!S_ISREG(status.st_mode)) {
            file.objection = u"it is not a regular file"_s;
            file.is_refused = true;
        } else if (opened = open_evidence(place); !opened.is_open()) {
            file.objection = system_error_text(errno);
        }
        file_stream stream(std::move(opened));
        take(file, file.objection.isEmpty() ? &stream : nullptr);
    }

    QString folder;
    QList<container_file> manifests;
};

/** A file of an archive that was read before anybody asked for it. */
struct read_file
{
    stored_file file;
    std::optional<QByteArray> content; ///< nothing where the archive gave no stream
};

class bytes_stream : public byte_stream
{
public:
    explicit bytes_stream(const QByteArray &all)
        : content(all)
    {
    }

    qsizetype read(char *bytes, qsizetype most) override
    {
        const qsizetype count = qMin(most, content.size() - given);
        std::copy_n(content.constData() + given, count, bytes);
        given += count;
        return count;
    }

private:
    const QByteArray &content;
    qsizetype given = 0;
};

/** Where the files of the evidence are stored that have the same names in every backup. */
QSet<QString> usual_places()
{
    QSet<QString> places{place_of(preferences_path)};
    for (const macos_database *database : macos_databases) {
        for (const QLatin1StringView ending : {""_L1, "-wal"_L1, "-shm"_L1, "-journal"_L1})
            places.insert(place_of(QString(database_folder) + database->file_name + ending));
    }
    return places;
}

/**
 * A backup in an archive, whose files stand in any order. What every backup with evidence holds is kept in the first
 * pass, while there is room; what else its index lists needs another one.
 */
class archive_files : public backup_files
{
public:
    archive_files(const QString &path, const QString &member, const container_observers &observers)
        : archive(open_archive(path, false, observers))
    {
        archive->visit_named([this](const QStringList &parts) { return is_usual(parts); },
                             [this](const stored_file &file, byte_stream *stream) { keep(file, stream); });
        choose_root(member);
    }

    void take(const QStringList &paths, const file_taker &take) override
    {
        QHash<QStringList, QString> wanted;
        for (const QString &path : paths) {
            const QStringList parts = root + path.split(u'/');
            if (is_full || !is_usual(parts))
                wanted.insert(parts, path);
            else
                give(parts, path, take);
        }
        if (wanted.isEmpty())
            return;
        archive->visit_named([&wanted](const QStringList &parts) { return wanted.contains(parts); },
                             [&wanted, &take](const stored_file &file, byte_stream *stream) {
                                 stored_file given = file;
                                 given.parts = wanted.value(file.parts).split(u'/');
                                 take(given, stream);
                             });
    }

    container_facts facts() const override
    {
        container_facts known;
        known.format = archive->format();
        known.files = {archive->file()};
        return known;
    }

    QString damage() const override
    {
        return archive->damage();
    }

    QStringList warnings() const override
    {
        return archive->warnings();
    }

private:
    bool is_usual(const QStringList &parts) const
    {
        if (parts.isEmpty())
            return false;
        return parts.last() == index_name || parts.last() == properties_name
               || (parts.size() > 1 && places.contains(parts.at(parts.size() - 2) + u'/' + parts.last()));
    }

    void keep(const stored_file &file, byte_stream *stream)
    {
        const QStringList folder = file.parts.first(file.parts.size() - 1);
        if (file.parts.last() == index_name && roots.size() < most_files && !roots.contains(folder))
            roots.append(folder);
        if (is_full)
            return;
        read_file read{file, {}};
        try {
            if (stream)
                read.content = content_of(*stream, file.origin.size, room);
        } catch (const stream_failure &) { // it fails again for who asks for it
            is_full = true;
        }
        room -= read.content ? read.content->size() : 0;
        is_full = is_full || --most_kept == 0;
        kept[file.parts].append(read);
        if (is_full)
            kept.clear();
    }

    /** The folder of a backup is the one of its index; of several the one that is highest, as of all evidence. */
    void choose_root(const QString &member)
    {
        QStringList highest;
        for (const QStringList &folder : std::as_const(roots)) {
            const bool is_meant = member.isEmpty() ? highest.isEmpty() || folder.size() <= root.size()
                                                   : folder.join(u'/') == member;
            if (!is_meant)
                continue;
            if (folder.size() < root.size())
                highest.clear();
            root = folder;
            highest.append(folder.join(u'/'));
        }
        if (highest.size() > 1)
            refuse_to_choose(u"there is evidence in several folders"_s, highest);
        if (highest.isEmpty() && !member.isEmpty())
            refuse_missing_member(member, {});
    }

    void give(const QStringList &parts, const QString &path, const file_taker &take) const
    {
        const QList<read_file> files = kept.value(parts);
        for (const read_file &read : files) {
            stored_file file = read.file;
            file.parts = path.split(u'/');
            std::optional<bytes_stream> stream;
            if (read.content)
                stream.emplace(*read.content);
            take(file, stream ? &*stream : nullptr);
        }
    }

    std::unique_ptr<archive_store> archive;
    QList<QStringList> roots; ///< of all backups in it
    QStringList root;
    const QSet<QString> places = usual_places();
    QHash<QStringList, QList<read_file>> kept;
    qint64 room = most_bytes_kept;
    int most_kept = most_files;
    bool is_full = false; ///< nothing is kept: there was too much of it
};

class backup_container : public source_container
{
public:
    backup_container(const QString &backup_path, std::unique_ptr<backup_files> kept)
        : path(backup_path)
        , files(std::move(kept))
    {
        copy_manifests();
        refuse_encryption();
    }

    container_facts facts() const override
    {
        container_facts known = files->facts();
        known.kind = u"backup"_s;
        return known;
    }

    void hash_files(const read_observer &hashed) override
    {
        files->hash_files(hashed);
    }

    const source_kind *kind() const override
    {
        return &ios_backup_kind;
    }

    std::unique_ptr<evidence_store> store(int) override;

    /** The files of the domain: where each is stored, and its path on the device. */
    QList<std::pair<QString, QString>> listed_files() const
    {
        static const QRegularExpression id_form(u"^[0-9a-fA-F]{40}$"_s);
        QList<std::pair<QString, QString>> listed;
        try {
            sqlite_database index(manifests.value(index_name));
            index.distrust();
            if (!index.has_table("Files"_L1))
                fail(path, u"Manifest.db has no ordinary table Files"_s);
            sqlite_statement query(index, "SELECT fileID, relativePath FROM Files NOT INDEXED WHERE domain = ?");
            query.bind(0, QString(bluetooth_domain));
            while (query.next() && listed.size() < most_files) {
                const QString id = query.text(0);
                if (id_form.match(id).hasMatch())
                    listed.append({id.first(2) + u'/' + id, query.text(1)});
            }
        } catch (const sqlite_error &error) {
            fail(path, u"Manifest.db cannot be read: "_s + error.message());
        }
        return listed;
    }

    backup_files &stored() const
    {
        return *files;
    }

private:
    void copy_manifests()
    {
        QStringList reasons;
        files->take({index_name, properties_name}, [this, &reasons](const stored_file &file, byte_stream *stream) {
            const QString name = file.parts.last();
            try {
                if (stream && !manifests.contains(name))
                    manifests.insert(name, content_of(*stream, file.origin.size, most_index_bytes));
                else if (!stream)
                    reasons.append(name + u": "_s + file.objection);
            } catch (const stream_failure &failure) {
                reasons.append(name + u": "_s + failure.reason());
            }
        });
        if (!reasons.isEmpty())
            fail(path, reasons.join(u"; "_s));
        for (const QLatin1StringView name : {index_name, properties_name}) {
            if (!manifests.contains(name))
                fail(path, u"it has no "_s + name);
        }
    }

    void refuse_encryption() const
    {
        const QByteArray guarded = guarded_property_list(manifests.value(properties_name));
        const QVariant list = guarded.isNull() ? QVariant() : parse_property_list(guarded);
        if (!list.isValid())
            fail(path, u"Manifest.plist is no property list"_s);
        if (list.toMap().value(u"IsEncrypted"_s).toBool())
            fail(path, u"it is encrypted (IsEncrypted in Manifest.plist)"_s);
    }

    QString path;
    std::unique_ptr<backup_files> files;
    QHash<QString, QByteArray> manifests; ///< by their names
};

class backup_store : public evidence_store
{
public:
    explicit backup_store(const backup_container &opened)
        : backup(opened)
    {
    }

    void visit(const evidence_search &, const file_taker &take) override
    {
        const evidence_search search(&ios_files_kind);
        QHash<QString, QStringList> wanted; // by where it is stored
        QStringList paths;
        for (const auto &[place, name] : backup.listed_files()) {
            const QStringList parts = group_folder + name.split(u'/');
            if (!search.match(parts))
                continue;
            wanted.insert(place, parts);
            paths.append(place);
        }
        QHash<QString, QStringList> missing = wanted;
        backup.stored().take(paths, [&wanted, &missing, &take](const stored_file &file, byte_stream *stream) {
            stored_file given = file;
            given.parts = wanted.value(joined(file.parts));
            missing.remove(joined(file.parts));
            take(given, stream);
        });
        for (auto lost = missing.cbegin(); lost != missing.cend(); ++lost) {
            stored_file file;
            file.parts = lost.value();
            file.origin.path = lost.key();
            file.objection = u"the backup lists it and does not store it, at "_s + lost.key();
            take(file, nullptr);
        }
    }

    QString damage() const override
    {
        return backup.stored().damage();
    }

    QStringList warnings() const override
    {
        return backup.stored().warnings();
    }

private:
    const backup_container &backup;
};

std::unique_ptr<evidence_store> backup_container::store(int)
{
    return std::make_unique<backup_store>(*this);
}

} // namespace

bool is_backup_folder(const QString &folder)
{
    return QFileInfo(folder + u'/' + index_name).isFile() && QFileInfo(folder + u'/' + properties_name).isFile();
}

std::unique_ptr<source_container> open_backup(const QString &path, const QString &member,
                                              const container_observers &observers)
{
    std::unique_ptr<backup_files> files;
    if (QFileInfo(path).isDir())
        files = std::make_unique<folder_files>(path);
    else
        files = std::make_unique<archive_files>(path, member, observers);
    return std::make_unique<backup_container>(path, std::move(files));
}
