// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_SPOTLIGHT_H
#define COMMON_PLATFORM_SPOTLIGHT_H

#include <QString>

/** What Spotlight prints of a file's used dates; null texts where it knows none. */
struct spotlight_descriptions
{
    QString last_used_date; ///< kMDItemLastUsedDate, "2020-05-03 10:00:00 +0000"
    QString used_dates;     ///< kMDItemUsedDates, such dates in quotes, with "," between and "(" ")" around them
};

/**
 * Asks Spotlight about the file at @p path. Nothing on a platform that has no Spotlight. A port provides this function
 * in a file of its own; CMake picks the file.
 */
spotlight_descriptions read_spotlight_descriptions(const QString &path);

#endif
