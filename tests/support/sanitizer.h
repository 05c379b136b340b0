// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_SANITIZER_H
#define TESTS_SUPPORT_SANITIZER_H

/**
 * A sanitizer reserves more addresses than any limit leaves, takes memory of its own, and makes an end with an exit
 * code of some crashes.
 */
inline constexpr bool is_sanitized = BLUETOOTH_LOGS_SANITIZED;

#endif
