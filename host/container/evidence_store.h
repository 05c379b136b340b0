// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_EVIDENCE_STORE_H
#define HOST_CONTAINER_EVIDENCE_STORE_H

#include "host/container/evidence_search.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/** Where a file of the evidence stood. */
struct file_origin
{
    QString path; ///< in its container
    std::optional<quint64> inode;
    QString modified; ///< UTC; empty: the container does not say
    std::optional<qint64> size;

    QJsonObject to_json() const;
};

/** Why a stream ends before its end, in plain words. */
class stream_failure : public std::exception
{
public:
    /** @p refused: the program will not read it; else it cannot. */
    explicit stream_failure(const QString &why, bool refused = false)
        : text(why)
        , is_refused(refused)
    {
    }

    QString reason() const
    {
        return text;
    }

    bool refuses() const
    {
        return is_refused;
    }

private:
    QString text;
    bool is_refused;
};

/** A file of a container as a stream of bytes. */
class byte_stream
{
public:
    virtual ~byte_stream() = default;
    /** At most @p most bytes; 0 at the end. Throws stream_failure. */
    virtual qsizetype read(char *bytes, qsizetype most) = 0;
};

/** A file that a store met and that may be evidence. */
struct stored_file
{
    QStringList parts; ///< its folders and its name
    file_origin origin;
    QString objection;       ///< why it is not read, in plain words; empty: it can be
    bool is_refused = false; ///< the objection is the program's; else the file cannot be read
    bool is_encrypted = false;
    bool is_folder = false;
    bool is_alone = false; ///< the container is this file, compressed
};

/** Takes a file; the stream is valid during the call, null for a folder and where there is an objection. */
using file_taker = std::function<void(const stored_file &file, byte_stream *stream)>;

/**
 * Where evidence comes from: a folder, a volume of an image, an archive, a backup. Nobody who uses one knows which.
 */
class evidence_store
{
public:
    virtual ~evidence_store() = default;

    /**
     * Gives every file that may be evidence to @p take, in the order of the store, in one pass. Of two files of one
     * path the later one counts. Throws host_error (not_found) when nothing of the store can be read.
     */
    virtual void visit(const evidence_search &search, const file_taker &take) = 0;

    /** A visit gives no more files, from here on, that are not evidence by their paths. */
    virtual void pass_over_others()
    {
    }

    /** Why the visit ended before the end of the store: what came behind it is unknown. Empty: it did not. */
    virtual QString damage() const
    {
        return {};
    }

    /** Names that were passed over, and why, in plain words. */
    virtual QStringList warnings() const
    {
        return {};
    }
};

/** A path of folders and a name as the container would write it. */
QString joined(const QStringList &parts);

#endif
