// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PRIVATE_MEMBER_H
#define TESTS_SUPPORT_PRIVATE_MEMBER_H

/**
 * Reads a private member for a test. Some settings are stored for the host's sake and read by nothing, so that no
 * behaviour shows them. The language lets an explicit instantiation name private members.
 *
 * At global scope:
 *     READ_PRIVATE_MEMBER(bluetooth_logs_macos, QString, plugin_name)
 *     QCOMPARE(private_plugin_name(object), …);
 */
template<typename Tag, typename Tag::type Member>
struct private_member_of {
    friend typename Tag::type pointer_to_private(Tag)
    {
        return Member;
    }
};

#define READ_PRIVATE_MEMBER(owner, value_type, name) \
    struct private_tag_##name { \
        using type = value_type owner::*; \
        friend type pointer_to_private(private_tag_##name); \
    }; \
    template struct private_member_of<private_tag_##name, &owner::name>; \
    static value_type private_##name(const owner &object) \
    { \
        return object.*pointer_to_private(private_tag_##name()); \
    }

#endif
