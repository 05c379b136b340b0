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
    if (!address)
        throw host_error(error_kind::io,
                         u"a part of the program cannot be loaded: "_s + QString::fromLocal8Bit(::dlerror()));
    return address;
}
