// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_ARCHIVE_INPUT_H
#define HOST_CONTAINER_ARCHIVE_INPUT_H

#include "host/container/container_file.h"
#include "host/files/descriptor.h"
#include "host/files/sha256.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

/**
 * The file of an archive, for who goes through it from member to member: what is passed over is not read. A file that
 * is hashed is read as a whole, each byte once as long as nobody goes back: what was passed over is hashed before
 * anything behind it is given away.
 */
class archive_input
{
public:
    /** @p hashed: empty where the file is not hashed. */
    archive_input(const QString &path, const read_observer &hashed);

    bool is_open() const
    {
        return file.is_open();
    }

    /**
     * The bytes from the present place on, as many as fit into a block; empty at the end. Nothing where they cannot be
     * read: the system's reason is in errno.
     */
    std::optional<QByteArrayView> next();

    /** Goes on by so many bytes, not past the end. How many it were. */
    qint64 skip(qint64 bytes);

    /** Goes to a place; not before the start, and not past the end. */
    void go_to(qint64 place);

    qint64 position() const
    {
        return place;
    }

    qint64 size() const
    {
        return file_size;
    }

    /** Ends the hash: what was not read yet is read. The hash, or why there is none, goes into @p hashed_file. */
    void finish_hash(container_file &hashed_file);

private:
    qsizetype read(qint64 from, qsizetype most);
    void hash_up_to(qint64 end);
    void hash_block(qint64 from, QByteArrayView block);

    descriptor file;
    read_observer observe_hash;
    std::optional<sha256> hash; ///< none: it is not wanted, or failed
    QString hash_problem;       ///< why it failed
    QByteArray buffer;
    qint64 file_size = 0;
    qint64 place = 0;
    qint64 hashed = 0; ///< all bytes before
    qsizetype block;
};

#endif
