// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_EVIDENCE_COLLECTOR_H
#define HOST_CONTAINER_EVIDENCE_COLLECTOR_H

#include "host/container/evidence_store.h"

#include <QMap>
#include <QString>

/** How much is taken out of a container. */
struct collection_limits
{
    qint64 most_database_bytes = qint64(1) << 30;
    qint64 most_log_bytes = qint64(64) << 30;
};

/** A file of the evidence that was found in a container, and what became of it. */
struct collected_file
{
    QString target; ///< relative to the folder of the evidence
    file_origin origin;
    QString staged;    ///< where it was written; empty: it was not
    QString sha256;    ///< of what was written
    qint64 size = 0;   ///< of what was read, else what the container says
    QString objection; ///< why it was not taken, in plain words
    bool is_refused = false;
    bool is_encrypted = false;
    int earlier = 0; ///< files of the same name that stand before it in the container
};

/** What a container holds of one source. */
struct collected_source
{
    const source_kind *kind = nullptr;
    QString root;                        ///< in the container
    bool has_a_sign = false;             ///< it is a source of this kind
    QMap<QString, collected_file> files; ///< by target, letter case and the form of Unicode aside
};

/**
 * Takes what a store gives, and sorts it by source. Files are written to a folder under names of their own; nothing
 * there is named by the container.
 */
class evidence_collector
{
public:
    /** @p staging: empty where nothing is to be written. @p member: the only log or root that counts; may be empty. */
    evidence_collector(const evidence_search &search, const QString &staging, const QString &member,
                       const collection_limits &limits);

    void take(const stored_file &file, byte_stream *stream);

    /** Whether a file that is no evidence by its path can still be the one that is wanted, a log. */
    bool takes_others() const;

    /**
     * The one source of the container. Throws host_error: refused with the list when there are several to choose from
     * or the one that was asked for is not there, not_found when there is none.
     */
    const collected_source &chosen() const;

    /** Whether there is one, or one to choose. */
    bool has_found() const;

    /** Why no member is a log, if one only was looked at; it is the reason of a file that is no source. */
    QString log_objection() const
    {
        return why_no_log;
    }

private:
    void take_evidence(const stored_file &file, const evidence_match &match, byte_stream *stream);
    void take_log(const stored_file &file, byte_stream *stream);
    void read_log(collected_file &log, byte_stream &stream, bool is_meant);
    void read_file(collected_file &file, byte_stream &stream);
    QString next_place();
    void require_room_for(const collected_file &file);
    void require_size_and_room(const collected_file &file);
    bool is_asked_for(const stored_file &file) const;
    QList<const collected_source *> candidates() const;

    evidence_search search;
    QString folder;
    QString asked_for;
    collection_limits limits;
    QMap<QString, collected_source> sources; ///< by kind and root
    collected_source log;
    QStringList log_names;
    QString why_no_log;
    qint64 other_files = 0;
    int places = 0;
    qint64 later_copies = 0; ///< bytes of what was taken that the run copies again
};

/** Throws host_error (refused) with the list of what --member can say. */
[[noreturn]] void refuse_to_choose(const QString &what, const QStringList &names);

/** Throws host_error (refused): nothing has the name of --member; @p reason why one file that was looked at has not,
 * may be empty. */
[[noreturn]] void refuse_missing_member(const QString &name, const QString &reason);

#endif
