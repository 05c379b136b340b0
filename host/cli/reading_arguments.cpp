// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/reading_arguments.h"

#include "host/cli/arguments.h"

namespace {

constexpr qint64 least_mebibytes = 128;
constexpr qint64 most_mebibytes = qint64(1) << 24;
constexpr qint64 most_seconds = 30000000; // about a year

} // namespace

std::shared_ptr<reading_limits> add_reading_limits(CLI::App &command, qint64 seconds)
{
    const auto limits = std::make_shared<reading_limits>();
    limits->timeout = seconds;
    add_number(command, {"--memory-limit", "MIB", "Most memory that reading the case may take (default 2048)"},
               least_mebibytes, most_mebibytes, limits->memory);
    const std::string usual = seconds == 0 ? "any" : std::to_string(seconds);
    add_number(command,
               {"--timeout", "SECONDS", "Longest time that reading the case may take (default: " + usual + ")"}, 1,
               most_seconds, limits->timeout);
    return limits;
}
