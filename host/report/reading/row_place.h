// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_ROW_PLACE_H
#define HOST_REPORT_READING_ROW_PLACE_H

#include <QByteArray>

#include <optional>

/** Where in the evidence a row comes from: a row of a table, or a line. */
struct row_place
{
    QByteArray file; ///< relative to the source; empty: the place is not known
    QByteArray table;
    std::optional<qint64> rowid;
    std::optional<qint64> line; ///< from 1
    std::optional<qint64> offset;
};

#endif
