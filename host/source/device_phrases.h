// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_DEVICE_PHRASES_H
#define HOST_SOURCE_DEVICE_PHRASES_H

#include <QLatin1StringView>

// What the plug-in looks for in the lines of a log: docs/formats.md.

inline constexpr QLatin1StringView found_device_phrase("BLE device found:");
inline constexpr QLatin1StringView active_device_phrase("active device:");
inline constexpr QLatin1StringView notice_phrase("<Notice>:"); ///< besides the one before

#endif
