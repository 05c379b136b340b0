// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_PROPERTY_LIST_GUARD_H
#define COMMON_PLATFORM_PROPERTY_LIST_GUARD_H

#include <QByteArray>

/**
 * Property lists are evidence, and the platforms' parsers trust them: they follow every level of nesting with a stack
 * frame and unfold what a binary list refers to many times. So a list is looked over before they see it.
 */

/** Larger files are not read. The preferences lists of real systems stay below 1 MiB. */
inline constexpr qint64 largest_property_list_bytes = 16 << 20;

/** Levels of nesting; real lists have fewer than ten. Few enough for the small stack of a worker thread. */
inline constexpr int deepest_property_list_level = 128;

/**
 * A list that every parser can take without running out of stack, memory or time, or a null array when @p bytes holds
 * none: too large, too deep, unfolding to too much, containing itself, declaring entities, or malformed.
 *
 * A binary list comes back as it is. An XML list comes back written anew as plain UTF-8, elements and text only, so
 * that the parser cannot read anything else into it than has been looked over here.
 */
QByteArray guarded_property_list(const QByteArray &bytes);

#endif
