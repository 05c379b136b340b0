// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_IMAGE_VOLUME_H
#define HOST_CONTAINER_IMAGE_VOLUME_H

#include "host/container/file_tree.h"
#include "host/container/sleuth_kit.h"

#include <memory>

using image_handle = std::unique_ptr<TSK_IMG_INFO, void (*)(TSK_IMG_INFO *)>;

/** Closes a file system, and the image of its own that the library makes for a volume of APFS and leaves open. */
struct file_system_closer
{
    TSK_IMG_INFO *image = nullptr;

    void operator()(TSK_FS_INFO *system) const
    {
        tsk().fs_close(system);
        tsk().img_close(image);
    }
};

using file_system_handle = std::unique_ptr<TSK_FS_INFO, file_system_closer>;
using pool_handle = std::unique_ptr<const TSK_POOL_INFO, void (*)(const TSK_POOL_INFO *)>;

/** What the library says of the last thing that failed, on one line. */
QString image_error();

/** The label of a file system, empty where it has none. */
QString volume_label(TSK_FS_INFO &file_system);

/** The files of a volume. */
std::unique_ptr<evidence_store> open_volume(file_system_handle file_system);

#endif
