// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/working_copy.h"

#include "host/files/created_file.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"
#include "host/files/system_error.h"

#include <QByteArray>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block_bytes = 1 << 16; // what was read is hashed from the cache

} // namespace

/** Reads a file to its end and gives every block to @p take. False with errno set when it cannot be read. */
bool read_blocks(int file, const std::function<void(QByteArrayView block)> &take)
{
    QByteArray buffer(block_bytes, Qt::Uninitialized);
    for (;;) {
        const auto count = ::read(file, buffer.data(), size_t(buffer.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        take(QByteArrayView(buffer.constData(), count));
    }
}

working_copy::working_copy(const QString &copy_path, mode_t mode)
    : path(copy_path)
{
    make_folder(QFileInfo(path).path());
    file = create_file(path, (mode & 0777) | S_IRUSR | S_IWUSR);
    if (!file.is_open())
        fail();
}

void working_copy::add(QByteArrayView block)
{
    while (!block.isEmpty()) {
        const auto count = ::write(file.number(), block.data(), size_t(block.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            fail();
        block = block.sliced(count);
    }
}

QString working_copy::hash()
{
    if (::fsync(file.number()) != 0)
        fail();
    file = open_without_links(path, O_RDONLY | O_NONBLOCK);
    sha256 hash;
    if (!file.is_open() || !read_blocks(file.number(), [&hash](QByteArrayView block) { hash.add(block); }))
        fail();
    return hash.result();
}

void working_copy::fail() const
{
    throw host_error(error_kind::io,
                     u"the working copy "_s + path + u" cannot be written: "_s + system_error_text(errno));
}
