// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_COUNT_TEXT_H
#define HOST_TEXT_COUNT_TEXT_H

#include <QString>

#include <optional>

/** "1,000". */
QString count_text(qint64 count);

/** The same, "an unknown number" for none. */
QString count_text(const std::optional<qint64> &count);

/** "1 row", "1,000 rows". */
QString rows_text(qint64 rows);

#endif
