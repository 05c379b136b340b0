// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_hash.h"

#include "host/files/access_time.h"
#include "host/files/open_without_links.h"
#include "host/files/sha256.h"
#include "host/files/transfer.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

std::optional<file_content> content_of_file(const QString &path)
{
    descriptor file = open_without_links(path, O_RDONLY | O_NONBLOCK | keep_access_time());
    if (!file.is_open() && errno == EPERM)
        file = open_without_links(path, O_RDONLY | O_NONBLOCK); // only the owner may keep the access time
    struct stat status = {};
    if (!file.is_open() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    sha256 hash;
    file_content content;
    const bool is_read = read_blocks(file.number(), [&](QByteArrayView block) {
        content.size += block.size();
        hash.add(block);
    });
    if (!is_read)
        return {};
    content.sha256 = hash.result();
    return content;
}

std::optional<QString> hash_of_file(const QString &path)
{
    const std::optional<file_content> content = content_of_file(path);
    if (!content)
        return {};
    return content->sha256;
}
