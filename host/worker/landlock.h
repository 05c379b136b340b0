// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_LANDLOCK_H
#define HOST_WORKER_LANDLOCK_H

#include "host/files/descriptor.h"

#include <QString>

#include <cstdint>
#include <optional>

/** Rights as Landlock counts them: to files and folders, to the network, and beyond the processes that are held. */
struct landlock_rights
{
    std::uint64_t files = 0;
    std::uint64_t net = 0;
    std::uint64_t scoped = 0;
};

/** All that a version of Landlock knows. */
landlock_rights rights_of_landlock(int version);

/**
 * Rules of Linux's Landlock: what is not allowed is denied, as far as the kernel's version of it knows the right.
 * https://docs.kernel.org/userspace-api/landlock.html. Paths that are not there get no rule. Rules hold for what a path
 * leads to, links followed, and for all that lies below.
 */
class landlock_rules
{
public:
    /** Without any rule. On a kernel without Landlock nothing here does anything. */
    landlock_rules();

    void allow_reading(const QString &path);
    void allow_reading_and_writing(const QString &path);
    /** Also files and folders are made, renamed and removed; links, sockets, pipes and devices are not made. */
    void allow_everything_below(const QString &folder);

    /** For the thread that calls, for good. Gives the kernel's version, none where it has not got it. */
    std::optional<int> put_in_force();

private:
    void allow(const QString &path, std::uint64_t rights);

    int version = 0;
    std::uint64_t handled = 0; ///< rights that are denied unless a rule allows them
    descriptor rules;
};

#endif
