// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/staged_file.h"

#include "host/files/created_file.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr mode_t readable_by_owner = 0400;

} // namespace

staged_file::staged_file(const QString &target)
    : path(target)
    , file(create_file(target, readable_by_owner))
{
    if (!file.is_open())
        fail(errno);
}

staged_file::~staged_file()
{
    if (file.is_open())
        folder_entry(path).remove();
}

void staged_file::add(QByteArrayView bytes)
{
    hash.add(bytes);
    if (!write_all(file.number(), bytes))
        fail(errno);
}

QString staged_file::keep()
{
    if (::fsync(file.number()) != 0)
        fail(errno);
    file.close();
    return hash.result();
}

void staged_file::fail(int error) const
{
    throw host_error(error_kind::incomplete, u"the evidence cannot be copied out of its container into the case: "_s
                                                 + path + u": "_s + system_error_text(error));
}
