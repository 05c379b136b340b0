// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_ARCHIVE_STORE_H
#define HOST_CONTAINER_ARCHIVE_STORE_H

#include "host/container/container_file.h"
#include "host/container/evidence_store.h"

/** How far an archive may go before it counts as made to overwhelm its reader. */
struct archive_limits
{
    qint64 ratio = 1000; ///< bytes unpacked for each byte read
    qint64 members = 10'000'000;
    qint64 free_bytes = 16 << 20; ///< unpacked before the ratio counts
};

/** An archive, which is read from its start to its end, or a compressed file, which is an archive of one. */
class archive_store : public evidence_store
{
public:
    /** As visit(), for files that are wanted by their paths, of an archive of which others are not. */
    virtual void visit_named(const std::function<bool(const QStringList &parts)> &is_wanted,
                             const file_taker &take) = 0;
    /** What it turned out to be, once a visit has begun. */
    virtual QLatin1StringView format() const = 0;
    /** Whether it is a compressed file, and no archive. */
    virtual bool is_single_file() const = 0;
    /** The file as it was before the first visit, with its hash, which the first visit makes. */
    virtual container_file file() const = 0;
};

/**
 * The archive in the regular file at @p path. @p others: every other file is given to the taker of visit() too, until
 * pass_over_others(). Throws host_error (not_found) in a build without libarchive.
 */
std::unique_ptr<archive_store> open_archive(const QString &path, bool others, const container_observers &observers,
                                            const archive_limits &limits = {});

/** "libarchive 3.6.2"; empty in a build without it. */
QString archive_library();

#endif
