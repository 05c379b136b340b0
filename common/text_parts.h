// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_TEXT_PARTS_H
#define COMMON_TEXT_PARTS_H

#include <QString>

// QString::section() gives the same parts, but splits the whole text first, which shows with millions of separators.

/** The text before the first @p separator; the whole text if there is none. */
QString first_part(const QString &text, QStringView separator);

/** The text between the first and the second @p separator, or after the only one; empty if there is none. */
QString second_part(const QString &text, QStringView separator);

#endif
