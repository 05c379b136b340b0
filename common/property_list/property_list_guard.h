// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PROPERTY_LIST_PROPERTY_LIST_GUARD_H
#define COMMON_PROPERTY_LIST_PROPERTY_LIST_GUARD_H

#include <QByteArray>

// Property lists are evidence, and the platforms' parsers trust them: they follow every level of nesting with a stack
// frame and unfold what a binary list refers to many times. So we look a list over before they see it.

/** Larger files are not read. The preferences lists of real systems stay below 1 MiB. */
inline constexpr qint64 largest_property_list_bytes = 16 << 20;

/** Levels of nesting; real lists have fewer than ten. Few enough for the small stack of a worker thread. */
inline constexpr int deepest_property_list_level = 128;

/**
 * Returns a list that every parser can take without running out of stack, memory or time. Returns a null array for a
 * list that is too large, too deep or malformed, unfolds to too much, contains itself or declares entities.
 *
 * A binary list comes back as it is. An XML list comes back written anew as plain UTF-8, elements and text only: the
 * parser sees nothing that we have not looked at.
 */
QByteArray guarded_property_list(const QByteArray &bytes);

#endif
