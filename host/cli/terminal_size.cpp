// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/terminal_size.h"

#include <sys/ioctl.h>
#include <unistd.h>

std::optional<qsizetype> terminal_columns(int descriptor)
{
    if (::isatty(descriptor) != 1)
        return {};
    const int wished = qEnvironmentVariableIntValue("COLUMNS");
    if (wished > 0)
        return wished;
    struct winsize size = {};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return {};
    return size.ws_col;
}
