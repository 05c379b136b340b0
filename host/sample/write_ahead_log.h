// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SAMPLE_WRITE_AHEAD_LOG_H
#define HOST_SAMPLE_WRITE_AHEAD_LOG_H

#include <QByteArray>

/**
 * A write-ahead log that makes of a database file the bytes @p after, when they were @p before: one transaction with
 * the pages that differ. SQLite's own logs have random salts; these are fixed, so that the same change gives the same
 * bytes. Both are whole SQLite files with pages of the same size. https://www.sqlite.org/fileformat2.html#walformat
 */
QByteArray write_ahead_log(QByteArrayView before, QByteArrayView after);

#endif
