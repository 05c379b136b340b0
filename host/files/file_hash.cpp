// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_hash.h"

#include "host/files/access_time.h"
#include "host/files/open_without_links.h"
#include "host/files/sha256.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr qsizetype block_bytes = 1 << 20;

} // namespace

std::optional<file_content> content_of_file(const QString &path)
{
    descriptor file = open_without_links(path, O_RDONLY | O_NONBLOCK | keep_access_time());
    if (!file.is_open() && errno == EPERM)
        file = open_without_links(path, O_RDONLY | O_NONBLOCK); // only the owner may keep the access time
    struct stat status = {};
    if (!file.is_open() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    QByteArray buffer(block_bytes, Qt::Uninitialized);
    sha256 hash;
    file_content content;
    for (;;) {
        const auto count = ::read(file.number(), buffer.data(), size_t(buffer.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {};
        if (count == 0) {
            content.sha256 = hash.result();
            return content;
        }
        content.size += count;
        hash.add(QByteArrayView(buffer.constData(), count));
    }
}

std::optional<QString> hash_of_file(const QString &path)
{
    const std::optional<file_content> content = content_of_file(path);
    if (!content)
        return {};
    return content->sha256;
}
