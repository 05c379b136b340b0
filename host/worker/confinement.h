// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_CONFINEMENT_H
#define HOST_WORKER_CONFINEMENT_H

#include <QJsonObject>
#include <QStringList>

#include <optional>

#include <sys/types.h>

/** What keeps a process in its place, as far as the system has it. */
struct confinement
{
    std::optional<int> landlock; ///< the version in force of what guards files and folders
    bool seccomp = false;        ///< whether calls that the work does not need are refused

    /** {"landlock": 7, "seccomp": true}; null where there is no Landlock. */
    QJsonObject to_json() const;
};

/**
 * From here on this process, whoever's code runs in it, reads only below @p readable, what is on the way of libraries
 * and the system's own data, and writes only below the folders @p writable. It starts no process, opens no connection,
 * signals nobody but itself, looks into nobody's memory, changes no permissions, owners or times of files, and leaves
 * no core. Paths that are not there are left out. There must be no other thread yet: the one that calls is confined,
 * and those that it starts. Gives what is in force; a system that lacks a part goes without it.
 */
confinement confine_process(const QStringList &readable, const QStringList &writable);

/** From here on this process gets SIGTERM when the one that made it, @p parent, is gone; not on every system. */
void end_with(pid_t parent);

#endif
