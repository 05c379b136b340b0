// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/folder_listing.h"

#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/system_error.h"

#include <QFile>

#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>

using namespace Qt::StringLiterals;

int for_each_entry(descriptor folder, const std::function<void(const dirent &entry)> &take)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(::fdopendir(folder.number()), ::closedir);
    if (!entries)
        return errno;
    folder.release();
    errno = 0;
    while (const dirent *entry = ::readdir(entries.get())) {
        const QByteArrayView name(entry->d_name);
        if (name != "." && name != "..")
            take(*entry);
        errno = 0;
    }
    return errno;
}

void for_each_entry_of(const QString &path, const std::function<void(const dirent &entry)> &take)
{
    descriptor folder = open_without_links(path, O_RDONLY | O_DIRECTORY);
    if (!folder.is_open() && (errno == ENOENT || errno == ENOTDIR || errno == ELOOP))
        return;
    const int error = folder.is_open() ? for_each_entry(std::move(folder), take) : errno;
    if (error != 0)
        throw host_error(error_kind::incomplete, path + u" cannot be listed: "_s + system_error_text(error));
}

QStringList names_in(const QString &path)
{
    QStringList names;
    for_each_entry_of(path, [&names](const dirent &entry) { names.append(QFile::decodeName(entry.d_name)); });
    names.sort();
    return names;
}
