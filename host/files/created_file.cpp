// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/created_file.h"

#include "host/files/open_without_links.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

descriptor create_file(const QString &path, mode_t mode)
{
    const mode_t usual_mask = ::umask(0);
    descriptor file = open_without_links(path, O_WRONLY | O_CREAT | O_EXCL, mode);
    const int error = errno;
    ::umask(usual_mask);
    errno = error;
    return file;
}
