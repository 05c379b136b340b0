// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_TAKEN_EVIDENCE_H
#define HOST_RUN_TAKEN_EVIDENCE_H

#include "host/container/evidence_export.h"
#include "host/run/source_request.h"
#include "host/source/evidence_state.h"

/** The choice that a request makes of a container. */
container_choice choice_of(const source_request &request);

/** The source of a request that is a container, before it is opened: only its path is known, and its kind if it was
 * given. */
evidence_source unopened_container(const QString &path, const source_kind *kind, bool follow_links);

/** The source that the plug-in gets once the evidence was taken out into the case. */
evidence_source source_taken_out(const source_request &request, const exported_source &taken);

/**
 * Completes what was seen of the files in the case with what is known of them in the container: where they stood, and
 * why one is not there. Throws host_error (io) when the case does not hold what was written into it.
 */
void add_origins(evidence_state &evidence, const exported_source &taken);

/** What is different of the files of the container that a record names, in plain words. */
QStringList container_changes(const QJsonValue &container);

#endif
