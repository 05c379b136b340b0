// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/disk_image.h"

#include "host/files/host_error.h"

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void refuse(const QString &path)
{
    throw host_error(error_kind::not_found,
                     u"this build reads no images, it was made without The Sleuth Kit (libtsk): "_s + path);
}

} // namespace

std::unique_ptr<source_container> open_image(const QString &path, QLatin1StringView)
{
    refuse(path);
}

ewf_hashes hashes_of_ewf_content(const QString &path)
{
    refuse(path);
}

QString image_library()
{
    return {};
}
