// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_MEMORY_LIMIT_H
#define TESTS_HOST_MEMORY_LIMIT_H

// A sanitizer reserves more addresses than any limit leaves: none is set then.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool has_memory_limit = false;
#else
inline constexpr bool has_memory_limit = true;
#endif

#endif
