// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_PATHS_H
#define HOST_FILES_PATHS_H

#include <QString>

#include <filesystem>

/** The same path for the standard library. */
std::filesystem::path to_std_path(const QString &path);

/**
 * Makes a path absolute; follows links only before "..". Throws host_error (refused) for an empty path, and for a
 * relative one when the working folder is gone or has a name that is no UTF-8. @p name says in the message what the
 * path is for.
 */
QString absolute_path(const QString &path, const QString &name);

/**
 * The path without links, followed as far as it exists: a case may lie behind links, and has none below itself. Throws
 * host_error (refused) when it cannot be followed. @p name says in the message what the path is for.
 */
QString resolved_path(const QString &path, const QString &name);

/** The same, but what lies in @p folder, which has no links in its path, stays as it is from there on. */
QString resolved_down_to(const QString &folder, const QString &path, const QString &name);

/**
 * Whether anything stands at the path; a link that leads nowhere counts. Throws host_error (io) when the system fails
 * or denies a look: what cannot be seen is not absent.
 */
bool path_exists(const QString &path);

/**
 * Whether @p path, which need not exist, is @p folder or lies below it. Compared by identity, so case, links and second
 * mounts do not matter.
 */
bool is_inside(const QString &path, const QString &folder);

/**
 * Makes the folder with its parents, on the disk when this returns. @p path is absolute, and no part of it may be a
 * link. Throws host_error (io) with the system's reason.
 */
void make_folder(const QString &path);

/** Removes a file or a link; it need not be there. Throws host_error (io). */
void remove_file(const QString &path);

#endif
