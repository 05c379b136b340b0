// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/program_part.h"

#include "host/files/host_error.h"

#include <QString>

#include <dlfcn.h>

using namespace Qt::StringLiterals;

void *address_in_part(const char *file, const char *function_name)
{
    void *const part = ::dlopen(file, RTLD_NOW | RTLD_LOCAL);
    void *const address = part ? ::dlsym(part, function_name) : nullptr;
    if (!address) {
        const QString path = QString::fromLatin1(file);
        const QString reason = QString::fromLocal8Bit(::dlerror()).replace(path, path.section(u'/', -1));
        throw host_error(error_kind::io, u"a part of the program, beside it, cannot be loaded: "_s + reason);
    }
    return address;
}
