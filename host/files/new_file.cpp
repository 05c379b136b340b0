// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/new_file.h"

#include "host/files/finished_file.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"

#include <cerrno>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype buffer_bytes = 1 << 18;

} // namespace

new_file::new_file(const QString &target)
    : path(target)
    , temporary(target + u".new"_s)
{
    folder_entry(temporary).remove(); // of a run that was killed here
    file = open_without_links(temporary, O_WRONLY | O_CREAT | O_EXCL, 0644);
    if (!file.is_open())
        fail(errno);
    unfinished.emplace(QFile::encodeName(temporary));
    buffer.reserve(buffer_bytes);
}

new_file::~new_file()
{
    if (file.is_open())
        folder_entry(temporary).remove();
}

void new_file::add(QByteArrayView bytes)
{
    if (buffer.size() + bytes.size() > buffer_bytes) {
        write(buffer);
        buffer.resize(0); // keeps its room
    }
    if (bytes.size() > buffer_bytes)
        write(bytes);
    else
        buffer.append(bytes);
}

void new_file::commit()
{
    write(buffer);
    if (::fsync(file.number()) != 0)
        fail(errno);
    if (const int error = give_name(temporary, path); error != 0)
        fail(error);
    unfinished.reset();
    file.close();
}

void new_file::fail(int error) const
{
    throw host_error(error_kind::io, path + u" cannot be written: "_s + system_error_text(error));
}

void new_file::write(QByteArrayView bytes)
{
    if (!write_all(file.number(), bytes))
        fail(errno);
}
