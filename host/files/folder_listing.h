// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_FOLDER_LISTING_H
#define HOST_FILES_FOLDER_LISTING_H

#include "host/files/descriptor.h"

#include <QString>
#include <QStringList>

#include <functional>

struct dirent;

/**
 * Gives what an open folder holds to @p take, in the system's order, without "." and "..". Returns the error number of
 * the system that ended it early; 0: all was given.
 */
int for_each_entry(descriptor folder, const std::function<void(const dirent &entry)> &take);

/**
 * The same of the folder at @p path, which is a case's: no part of the path may be a link. Nothing for one that is not
 * there, or is none. Throws host_error (incomplete) where not all of it can be listed: what is not seen is not absent.
 */
void for_each_entry_of(const QString &path, const std::function<void(const dirent &entry)> &take);

/** The names that it gives, sorted. */
QStringList names_in(const QString &path);

#endif
