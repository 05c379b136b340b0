// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_SOURCE_SURVEY_H
#define HOST_RUN_SOURCE_SURVEY_H

#include "host/container/evidence_export.h"

#include <QJsonObject>
#include <QString>

/**
 * What stands at a path, without extracting it: {"path", "type", "container", "problem", "volumes", "evidence"}, and
 * "kind_of_problem" and "warnings" besides. A container is looked into by a process of its own. Never throws for a
 * source that is none: its "problem" says so.
 */
QJsonObject survey_source(const container_choice &choice, qint64 mebibytes_of_memory, qint64 seconds);

/**
 * From here on a copy of this process, which does @p work, looks into containers: a new one would take longer to load
 * its libraries than most archives take. For a process of one thread.
 */
void survey_in_copies(int (*work)());

/** The part of it that the worker process does. */
QJsonObject survey_of_container(const container_choice &choice);

/** "md5" and "sha1" of what an EWF holds, or the "problem". For a process that is confined. */
QJsonObject hashes_of_image(const QString &path);

#endif
