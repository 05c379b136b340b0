// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_DISK_IMAGE_H
#define HOST_CONTAINER_DISK_IMAGE_H

#include "host/container/image_segments.h"
#include "host/container/source_container.h"

/**
 * The image in the file at @p path and the files that follow it by their names. Throws host_error (not_found) when it
 * cannot be opened, and in a build without The Sleuth Kit.
 */
std::unique_ptr<source_container> open_image(const QString &path, QLatin1StringView format);

/** MD5 and SHA-1 of what the EWF that begins with the file at @p path holds. Throws host_error as open_image(). */
ewf_hashes hashes_of_ewf_content(const QString &path);

/** "The Sleuth Kit 4.11.1"; empty in a build without it. */
QString image_library();

#endif
