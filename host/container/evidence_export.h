// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_EVIDENCE_EXPORT_H
#define HOST_CONTAINER_EVIDENCE_EXPORT_H

#include "host/container/evidence_collector.h"
#include "host/container/source_container.h"
#include "host/files/host_error.h"

#include <QJsonObject>

/** Which source of which container is meant, and how much may be taken. */
struct container_choice
{
    QString path;
    const source_kind *kind = nullptr; ///< null: any
    int volume = 0;                    ///< 0: the only one with evidence
    QString member;                    ///< of an archive; empty: the only one
    bool follow_links = false;
    collection_limits limits;
};

/** A volume that was looked into. */
struct looked_volume
{
    volume_facts facts;
    const source_kind *kind = nullptr; ///< null: nothing was recognized
    QList<collected_file> evidence;
};

/** What a container is, and what of it would be taken. */
struct container_survey
{
    container_facts container;
    bool is_in_place = false;          ///< a folder, which is none
    const source_kind *kind = nullptr; ///< of what would be taken
    QString problem;                   ///< why nothing would be, or not all; empty: all would
    QString damage;                    ///< why the container was not read to its end
    error_kind reason = error_kind::not_found;
    QList<looked_volume> volumes;
    QList<collected_file> evidence;
    QStringList warnings;
};

/**
 * The volume to take: the one that was asked for, or the only one with evidence. Throws host_error: refused with the
 * list when there is something to choose, not_found when there is none.
 */
const looked_volume &chosen_volume(const QList<looked_volume> &volumes, const container_choice &choice);

/** What stands beside the volume that is taken and could hold more. */
QStringList unread_volumes(const QList<looked_volume> &volumes);

/** Looks into a container without writing anything. Throws host_error (not_found) when it cannot be opened. */
container_survey survey_container(const container_choice &choice, const read_observer &read);

/** The places of an export. */
struct export_places
{
    QString staging;  ///< where files stand until all are there; made here
    QString evidence; ///< the folder that the plug-in gets as its source
};

/** What was taken out of a container. */
struct exported_source
{
    const source_kind *kind = nullptr;
    QJsonValue container; ///< as records have it; null for a folder
    QString log_name;     ///< of a log text: its name in the folder of the evidence
    QList<collected_file> files;
    QStringList warnings; ///< what the examiner should know
    QStringList errors;   ///< what could not be read of the container, though it may hold evidence
};

/**
 * Takes the evidence out of the container: files are written aside first, and stand in the folder of the evidence only
 * when all are whole. The files of an image are hashed before, an archive while it is read. Throws host_error:
 * not_found without evidence, refused with the list when there is something to choose, incomplete when the case's disk
 * does not take it.
 */
exported_source export_evidence(const container_choice &choice, const export_places &places,
                                const container_observers &observers);

#endif
