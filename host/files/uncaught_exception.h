// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_UNCAUGHT_EXCEPTION_H
#define HOST_FILES_UNCAUGHT_EXCEPTION_H

#include <exception>
#include <new>

/** For a terminate handler: whether memory ran out, in noexcept code for instance. Allocates nothing. */
inline bool is_uncaught_bad_alloc()
{
    try {
        if (std::current_exception())
            std::rethrow_exception(std::current_exception());
    } catch (const std::bad_alloc &) {
        return true;
    } catch (...) {
    }
    return false;
}

#endif
