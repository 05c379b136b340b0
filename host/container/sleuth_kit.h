// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_SLEUTH_KIT_H
#define HOST_CONTAINER_SLEUTH_KIT_H

#include <tsk/libtsk.h>

/**
 * The functions of The Sleuth Kit that the program calls. It brings forty libraries along, so that it is linked to a
 * file of its own, sleuth_kit_functions.cpp, which is loaded when an image is opened.
 */
struct sleuth_kit
{
    decltype(&tsk_error_get) error_get = tsk_error_get;
    decltype(&tsk_error_reset) error_reset = tsk_error_reset;
    decltype(&tsk_fs_attr_read) fs_attr_read = tsk_fs_attr_read;
    decltype(&tsk_fs_close) fs_close = tsk_fs_close;
    decltype(&tsk_fs_dir_close) fs_dir_close = tsk_fs_dir_close;
    decltype(&tsk_fs_dir_get) fs_dir_get = tsk_fs_dir_get;
    decltype(&tsk_fs_dir_get_name) fs_dir_get_name = tsk_fs_dir_get_name;
    decltype(&tsk_fs_dir_getsize) fs_dir_getsize = tsk_fs_dir_getsize;
    decltype(&tsk_fs_dir_open_meta) fs_dir_open_meta = tsk_fs_dir_open_meta;
    decltype(&tsk_fs_file_attr_get) fs_file_attr_get = tsk_fs_file_attr_get;
    decltype(&tsk_fs_file_attr_get_type) fs_file_attr_get_type = tsk_fs_file_attr_get_type;
    decltype(&tsk_fs_file_close) fs_file_close = tsk_fs_file_close;
    decltype(&tsk_fs_file_open_meta) fs_file_open_meta = tsk_fs_file_open_meta;
    decltype(&tsk_fs_file_read) fs_file_read = tsk_fs_file_read;
    decltype(&tsk_fs_open_img) fs_open_img = tsk_fs_open_img;
    decltype(&tsk_img_close) img_close = tsk_img_close;
    decltype(&tsk_img_open_external) img_open_external = tsk_img_open_external;
    decltype(&tsk_img_open_utf8) img_open_utf8 = tsk_img_open_utf8;
    decltype(&tsk_img_read) img_read = tsk_img_read;
    decltype(&tsk_pool_close) pool_close = tsk_pool_close;
    decltype(&tsk_pool_open_img_sing) pool_open_img_sing = tsk_pool_open_img_sing;
    decltype(&tsk_version_get_str) version_get_str = tsk_version_get_str;
    decltype(&tsk_vs_close) vs_close = tsk_vs_close;
    decltype(&tsk_vs_open) vs_open = tsk_vs_open;
};

/** Throws host_error (io) where they cannot be loaded. */
const sleuth_kit &tsk();

#endif
