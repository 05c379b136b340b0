// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/sleuth_kit.h"

#include "host/files/host_error.h"

#include <QFile>
#include <QString>

#include <dlfcn.h>

using namespace Qt::StringLiterals;

namespace {

/** What the system cannot load, or find in it, is said in its own words. */
void *loaded(void *found)
{
    if (!found)
        throw host_error(error_kind::io, u"The Sleuth Kit cannot be loaded: "_s + QFile::decodeName(::dlerror()));
    return found;
}

sleuth_kit load()
{
    void *const library = loaded(::dlopen(BLUETOOTH_LOGS_LIBTSK, RTLD_NOW | RTLD_LOCAL));
    const auto find = [library]<typename Function>(Function *&function, const char *name) {
        function = reinterpret_cast<Function *>(loaded(::dlsym(library, name)));
    };
    sleuth_kit functions;
    find(functions.error_get, "tsk_error_get");
    find(functions.error_reset, "tsk_error_reset");
    find(functions.fs_attr_read, "tsk_fs_attr_read");
    find(functions.fs_close, "tsk_fs_close");
    find(functions.fs_dir_close, "tsk_fs_dir_close");
    find(functions.fs_dir_get, "tsk_fs_dir_get");
    find(functions.fs_dir_get_name, "tsk_fs_dir_get_name");
    find(functions.fs_dir_getsize, "tsk_fs_dir_getsize");
    find(functions.fs_dir_open_meta, "tsk_fs_dir_open_meta");
    find(functions.fs_file_attr_get, "tsk_fs_file_attr_get");
    find(functions.fs_file_attr_get_type, "tsk_fs_file_attr_get_type");
    find(functions.fs_file_close, "tsk_fs_file_close");
    find(functions.fs_file_open_meta, "tsk_fs_file_open_meta");
    find(functions.fs_file_read, "tsk_fs_file_read");
    find(functions.fs_open_img, "tsk_fs_open_img");
    find(functions.img_close, "tsk_img_close");
    find(functions.img_open_external, "tsk_img_open_external");
    find(functions.img_open_utf8, "tsk_img_open_utf8");
    find(functions.img_read, "tsk_img_read");
    find(functions.pool_close, "tsk_pool_close");
    find(functions.pool_open_img_sing, "tsk_pool_open_img_sing");
    find(functions.version_get_str, "tsk_version_get_str");
    find(functions.vs_close, "tsk_vs_close");
    find(functions.vs_open, "tsk_vs_open");
    return functions;
}

} // namespace

const sleuth_kit &tsk()
{
    static const sleuth_kit functions = load();
    return functions;
}
