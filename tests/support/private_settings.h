// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PRIVATE_SETTINGS_H
#define TESTS_SUPPORT_PRIVATE_SETTINGS_H

/**
 * Lets a test see what an object keeps for the host and gives back to nobody. An explicit instantiation may name
 * private members; @p members become the fields of a Settings, in order:
 *
 *     struct kept { QString path; int count; };
 *     kept settings_of(const thing &object);
 *     template struct private_settings<thing, kept, &thing::path, &thing::count>;
 */
template<typename Object, typename Settings, auto... members>
struct private_settings
{
    friend Settings settings_of(const Object &object)
    {
        return {(object.*members)...};
    }
};

#endif
