// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/archive_store.h"

#include "host/files/host_error.h"

using namespace Qt::StringLiterals;

std::unique_ptr<archive_store> open_archive(const QString &path, bool, const container_observers &,
                                            const archive_limits &)
{
    throw host_error(error_kind::not_found, u"this build reads no archives, it was made without libarchive: "_s + path);
}

QString archive_library()
{
    return {};
}
