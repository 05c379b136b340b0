// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/landlock.h"

#include <QFile>

#include <algorithm>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace {

// Headers may be older than the kernel, whose numbers never change.
constexpr std::uint64_t right_to_refer = 1ULL << 13;     // version 2: rename and link between folders
constexpr std::uint64_t right_to_truncate = 1ULL << 14;  // 3
constexpr std::uint64_t right_to_use_ioctl = 1ULL << 15; // 5: of devices
constexpr std::uint64_t rights_of_version_1 = (1ULL << 13) - 1;
constexpr std::uint64_t net_bind_and_connect = 3;     // 4
constexpr std::uint64_t abstract_sockets_signals = 3; // 6

constexpr std::uint64_t rights_of_files = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_WRITE_FILE
                                          | LANDLOCK_ACCESS_FS_READ_FILE | right_to_truncate | right_to_use_ioctl;
constexpr std::uint64_t reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr std::uint64_t writing = LANDLOCK_ACCESS_FS_WRITE_FILE | right_to_truncate;
constexpr std::uint64_t making = LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE
                                 | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG | right_to_refer;

/** By the version of Landlock that first knows them. */
struct rights_since
{
    int version;
    landlock_rights rights;
};

constexpr rights_since known_rights[] = {
    {1, {rights_of_version_1, 0, 0}},  {2, {right_to_refer, 0, 0}},     {3, {right_to_truncate, 0, 0}},
    {4, {0, net_bind_and_connect, 0}}, {5, {right_to_use_ioctl, 0, 0}}, {6, {0, 0, abstract_sockets_signals}},
};

} // namespace

landlock_rights rights_of_landlock(int version)
{
    landlock_rights all;
    for (const auto &[first_version, rights] : known_rights) {
        if (first_version > version)
            break;
        all.files |= rights.files;
        all.net |= rights.net;
        all.scoped |= rights.scoped;
    }
    return all;
}

landlock_rules::landlock_rules()
    : version(int(::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION)))
{
    if (version < 1)
        return;
    // What an older kernel does not know of the structure is zero, which it accepts.
    const landlock_rights attributes = rights_of_landlock(version); // as the kernel takes them
    handled = attributes.files;
    rules = descriptor(int(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0)));
}

void landlock_rules::allow_reading(const QString &path)
{
    allow(path, reading);
}

void landlock_rules::allow_reading_and_writing(const QString &path)
{
    allow(path, reading | writing);
}

void landlock_rules::allow_everything_below(const QString &folder)
{
    allow(folder, reading | writing | making);
}

std::optional<int> landlock_rules::put_in_force()
{
    if (!rules.is_open() || ::syscall(SYS_landlock_restrict_self, rules.number(), 0) != 0)
        return {};
    return version;
}

void landlock_rules::allow(const QString &path, std::uint64_t rights)
{
    if (!rules.is_open())
        return;
    const descriptor place(::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
    struct stat status = {};
    if (!place.is_open() || ::fstat(place.number(), &status) != 0)
        return;
    const std::uint64_t possible = S_ISDIR(status.st_mode) ? handled : handled & rights_of_files;
    landlock_path_beneath_attr rule = {};
    rule.allowed_access = rights & possible;
    rule.parent_fd = place.number();
    ::syscall(SYS_landlock_add_rule, rules.number(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}
