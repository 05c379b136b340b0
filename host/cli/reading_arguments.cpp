// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/reading_arguments.h"

#include "host/cli/arguments.h"

std::shared_ptr<reading_limits> add_reading_limits(CLI::App &command, qint64 seconds)
{
    auto limits = std::make_shared<reading_limits>();
    limits->timeout = seconds;
    add_process_limits(command, "reading the case", limits->memory, limits->timeout);
    return limits;
}
