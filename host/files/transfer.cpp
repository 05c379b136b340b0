// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/transfer.h"

#include <QByteArray>

#include <cerrno>

#include <unistd.h>

namespace {

constexpr qsizetype block_bytes = 1 << 16; // what was read is hashed from the cache

} // namespace

qsizetype read_some(int file, char *bytes, qsizetype most)
{
    for (;;) {
        const auto count = ::read(file, bytes, size_t(most));
        if (count >= 0 || errno != EINTR)
            return count;
    }
}

bool read_blocks(int file, const std::function<void(QByteArrayView block)> &take)
{
    QByteArray buffer(block_bytes, Qt::Uninitialized);
    for (;;) {
        const qsizetype count = read_some(file, buffer.data(), buffer.size());
        if (count <= 0)
            return count == 0;
        take(QByteArrayView(buffer.constData(), count));
    }
}

bool write_all(int file, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto count = ::write(file, bytes.data(), size_t(bytes.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0)
            errno = EIO;
        if (count <= 0)
            return false;
        bytes = bytes.sliced(count);
    }
    return true;
}
