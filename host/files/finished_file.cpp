// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/finished_file.h"

#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/system_error.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

void put_in_place(const QString &finished, const QString &path)
{
    const descriptor file = open_without_links(finished, O_RDONLY | O_NONBLOCK);
    int error = file.is_open() && ::fsync(file.number()) == 0 ? 0 : errno;
    if (error == 0)
        error = give_name(finished, path);
    if (error != 0)
        throw host_error(error_kind::io, path + u" cannot be written: "_s + system_error_text(error));
}

int give_name(const QString &finished, const QString &path)
{
    const folder_entry entry(finished);
    const int error = entry.rename_to(path.sliced(path.lastIndexOf(u'/') + 1));
    return error == 0 ? entry.sync_folder() : error;
}
