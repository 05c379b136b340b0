// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_HOST_DEVICES_FILE_H
#define HOST_DEVICES_HOST_DEVICES_FILE_H

#include "host/source/evidence_state.h"

#include <QString>
#include <QStringList>

#include <optional>

/** What the lists of devices of a source hold that are no databases. */
struct host_device_findings
{
    std::optional<qint64> count; ///< lines; none where the source has no such list
    QStringList problems;        ///< devices may be missing, in plain words
    QStringList notes;
};

/**
 * Reads the working copies below @p copies of the lists among the files of @p evidence, and writes their devices to
 * @p file (docs/report-formats.md); no file is written where there is no list. @p source is the number of the source.
 * Throws host_error (io) when something cannot be written.
 */
host_device_findings write_host_devices(const evidence_state &evidence, const QString &copies, int source,
                                        const QString &file);

#endif
