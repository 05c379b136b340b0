// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_PATHS_H
#define HOST_PATHS_H

#include <QString>

#include <filesystem>

/** The same path for the standard library. */
std::filesystem::path to_std_path(const QString &path);

/** Whether anything stands at the path, be it a link that leads nowhere. */
bool path_exists(const QString &path);

/**
 * Whether @p path, which need not exist, is @p folder or lies below it once every link is followed. Folders are
 * compared by what they are, not by their names: capitals, links and second mounts deceive nobody.
 */
bool is_inside(const QString &path, const QString &folder);

/** Removes the path with everything in it. A link is removed as a link, what it leads to stays. False on failure. */
bool remove_tree(const QString &path);

#endif
