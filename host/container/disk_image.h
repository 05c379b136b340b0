// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_DISK_IMAGE_H
#define HOST_CONTAINER_DISK_IMAGE_H

#include "host/container/source_container.h"

/**
 * The image in the file at @p path and the files that follow it by their names. Throws host_error (not_found) when it
 * cannot be opened, and in a build without The Sleuth Kit.
 */
std::unique_ptr<source_container> open_image(const QString &path, QLatin1StringView format, const read_observer &read);

/** "The Sleuth Kit 4.11.1"; empty in a build without it. */
QString image_library();

#endif
