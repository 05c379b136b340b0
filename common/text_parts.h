// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_TEXT_PARTS_H
#define COMMON_TEXT_PARTS_H

#include <QString>

/** What stands before the first @p separator; the whole text without one. */
QString first_part(const QString &text, QStringView separator);

/** What stands between the first and the second @p separator, or behind the only one; empty without one. */
QString second_part(const QString &text, QStringView separator);

#endif
