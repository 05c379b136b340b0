// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_OPEN_WITHOUT_LINKS_H
#define HOST_FILES_OPEN_WITHOUT_LINKS_H

#include "host/files/descriptor.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/types.h>

/**
 * Opens what stands at an absolute path, and follows a link nowhere, neither on the way nor at the end: ELOOP or
 * ENOTDIR. Not open, with errno set, when it fails. @p mode is that of a file which O_CREAT makes.
 */
descriptor open_without_links(const QString &path, int flags, mode_t mode = 0);

/** Whether it is a folder that no link leads to; errno says what is else. */
bool is_folder(const QString &path);

/**
 * Opens a file of a case for reading as evidence is opened: a regular one that no link leads to, without waiting.
 * Gives the reason when it fails.
 */
QString open_case_file(QFile &file, const QString &path);

/** The system's own way to open without links; -1 with ENOSYS where there is none. */
int open_in_one_step(const char *path, int flags, mode_t mode);

/** The way of all other systems: folder by folder, each opened in the one before it. */
int open_step_by_step(const char *path, int flags, mode_t mode);

/**
 * An entry of a folder that is held open: whatever the path leads to meanwhile, the folder stays the same. Every
 * function gives 0 or the system's error number.
 */
class folder_entry
{
public:
    /** @p path is absolute. Where its folder cannot be opened, every function gives the reason. */
    explicit folder_entry(const QString &path);

    int make_folder() const;
    int remove() const;        ///< a file or a link
    int remove_folder() const; ///< an empty one
    int remove_tree() const;   ///< a file, a link, or a folder with all that is in it
    int rename_to(const QString &new_name) const;
    /** Puts the names in the folder on the disk, where it may be read and the file system knows such a thing. */
    int sync_folder() const;

private:
    descriptor folder;
    QByteArray name;
    bool is_readable = false;
    int error = 0;
};

#endif
