// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_SLEUTH_KIT_H
#define HOST_CONTAINER_SLEUTH_KIT_H

#include <tsk/libtsk.h>

/**
 * The functions of The Sleuth Kit that the program calls. The library brings forty others along, which take longer to
 * load than most commands take: it is loaded when an image is opened.
 */
struct sleuth_kit
{
    decltype(&tsk_error_get) error_get;
    decltype(&tsk_error_reset) error_reset;
    decltype(&tsk_fs_attr_read) fs_attr_read;
    decltype(&tsk_fs_close) fs_close;
    decltype(&tsk_fs_dir_close) fs_dir_close;
    decltype(&tsk_fs_dir_get) fs_dir_get;
    decltype(&tsk_fs_dir_get_name) fs_dir_get_name;
    decltype(&tsk_fs_dir_getsize) fs_dir_getsize;
    decltype(&tsk_fs_dir_open_meta) fs_dir_open_meta;
    decltype(&tsk_fs_file_attr_get) fs_file_attr_get;
    decltype(&tsk_fs_file_attr_get_type) fs_file_attr_get_type;
    decltype(&tsk_fs_file_close) fs_file_close;
    decltype(&tsk_fs_file_open_meta) fs_file_open_meta;
    decltype(&tsk_fs_file_read) fs_file_read;
    decltype(&tsk_fs_open_img) fs_open_img;
    decltype(&tsk_img_close) img_close;
    decltype(&tsk_img_open_external) img_open_external;
    decltype(&tsk_img_open_utf8) img_open_utf8;
    decltype(&tsk_img_read) img_read;
    decltype(&tsk_pool_close) pool_close;
    decltype(&tsk_pool_open_img_sing) pool_open_img_sing;
    decltype(&tsk_version_get_str) version_get_str;
    decltype(&tsk_vs_close) vs_close;
    decltype(&tsk_vs_open) vs_open;
};

/** Throws host_error (io) where they cannot be loaded. */
const sleuth_kit &tsk();

#endif
