// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_EVIDENCE_LOOK_H
#define HOST_SOURCE_EVIDENCE_LOOK_H

#include "host/source/evidence_source.h"
#include "host/source/evidence_state.h"

#include <QString>

#include <functional>

/** Gets the number of bytes that were hashed since the last call. */
using hash_observer = std::function<void(qint64 bytes)>;

/** Where the host keeps what it takes from the evidence. */
struct evidence_places
{
    QString copy_folder;    ///< macOS: working copies, at the paths that the files have in the source
    QString ios_lines;      ///< iOS: the file for the lines of the log that rows are made of
    QString unparsed_lines; ///< iOS: the file for those that have words of a device and give no row
};

/**
 * Looks at the evidence before the plug-in does: states and hashes, working copies, lines. A database larger than
 * @p most_database_bytes is refused, unread. Throws host_error (io) when something cannot be written.
 */
evidence_state look_before(const evidence_source &source, const evidence_places &places, qint64 most_database_bytes,
                           const hash_observer &hashed);

/** Looks again, after the plug-in, and completes @p evidence. */
void look_after(evidence_state &evidence, const evidence_source &source, const hash_observer &hashed);

#endif
