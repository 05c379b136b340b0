// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_REFERENCE_DATE_H
#define COMMON_PLATFORM_REFERENCE_DATE_H

#include <QDateTime>

/** Unix seconds of 2001-01-01 00:00:00 UTC, from which Apple's reference dates count. */
inline constexpr qint64 apple_reference_date = 978307200;

/**
 * The date in UTC that property lists store as @p seconds since apple_reference_date. Parts of a second are cut off
 * backwards in time. Invalid outside the years 1 to 9999, and for what is no number.
 */
QDateTime date_of_reference_seconds(double seconds);

#endif
