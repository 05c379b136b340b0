// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_SALVAGE_H
#define HOST_SOURCE_SALVAGE_H

#include "host/source/macos_databases.h"

#include <QJsonObject>
#include <QList>
#include <QString>

/**
 * Writes the rows on intact pages of the working copies of damaged databases, which stand below @p copies, to @p file
 * (docs/report-formats.md); no file is written where there is none. Gives the rows by result table. Throws host_error
 * (io) when something cannot be written.
 */
QJsonObject write_salvage(const QList<const macos_database *> &damaged, const QString &copies, const QString &file);

#endif
