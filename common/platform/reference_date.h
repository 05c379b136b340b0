// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_REFERENCE_DATE_H
#define COMMON_PLATFORM_REFERENCE_DATE_H

#include <QDateTime>

/**
 * The date that property lists store as @p seconds since 2001-01-01 UTC, in UTC. Parts of a second are cut off
 * backwards in time. Invalid outside the years 1 to 9999, and for what is no number.
 */
QDateTime date_of_reference_seconds(double seconds);

#endif
