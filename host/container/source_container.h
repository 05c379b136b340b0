// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_SOURCE_CONTAINER_H
#define HOST_CONTAINER_SOURCE_CONTAINER_H

#include "host/container/archive_store.h"
#include "host/container/evidence_store.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

/** A volume of an image. */
struct volume_facts
{
    int number = 1;
    qint64 offset = 0; ///< bytes from the start of the image; of a volume of APFS that of its container
    qint64 size = 0;
    QString file_system; ///< "apfs", "hfs+", "ntfs", "ext4", …; empty: none that is known
    QString name;        ///< its label, else that of its partition
    bool is_encrypted = false;
    QString problem; ///< why it cannot be opened, in plain words
};

/** What a record says of a container. */
struct container_facts
{
    QString kind;   ///< "image", "archive", "backup", "compressed"
    QString format; ///< "raw", "ewf", …
    QList<container_file> files;
    QString md5; ///< that the container itself holds of its content
    QString sha1;
    std::optional<volume_facts> volume; ///< that was taken

    QJsonObject to_json() const;
};

/** What evidence is taken out of, open for reading. */
class source_container
{
public:
    virtual ~source_container() = default;

    /** Complete once its store was visited. The state of its files is that before it was opened. */
    virtual container_facts facts() const = 0;
    /** Hashes those of its files that are not hashed while they are read: before anything is taken out of them. */
    virtual void hash_files(const read_observer &)
    {
    }
    /** None for what has none. */
    virtual QList<volume_facts> volumes() const
    {
        return {};
    }
    /** The files of a volume; @p number is without a meaning where there are none. */
    virtual std::unique_ptr<evidence_store> store(int number) = 0;
    /** What of it is missing, in plain words; empty: nothing that can be seen before its files are read. */
    virtual QString damage() const
    {
        return {};
    }
    /** The kind of source that it is by itself; null: its files decide. */
    virtual const source_kind *kind() const
    {
        return nullptr;
    }
};

/** How a container is opened. */
struct opening
{
    const source_kind *kind = nullptr; ///< that was asked for; null: any
    bool follow_links = false;         ///< of a folder: also out of it
    QString member;                    ///< of an archive: the folder of the backup that is meant; empty: the only one
    container_observers observers;
};

/**
 * What stands at @p path: an image, an archive, a backup, or a folder of a kind that is taken out of its place. Null
 * for anything else. Throws host_error (not_found) for a container that is not read, naming the way around.
 */
std::unique_ptr<source_container> open_container(const QString &path, const opening &how);

/** Whether a source at @p path is a container, by what can be seen without opening it. */
bool is_container(const QString &path, const source_kind *kind);

#endif
