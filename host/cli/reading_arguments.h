// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_READING_ARGUMENTS_H
#define HOST_CLI_READING_ARGUMENTS_H

#include "host/run/reading_limits.h"

#include <CLI/CLI.hpp>

#include <memory>

/** Seconds that a command which reads the whole case may take. */
inline constexpr qint64 long_reading = 3600;

/**
 * Adds --memory-limit and --timeout to a command that reads a case, and gives what they are once the command line is
 * read. @p seconds is the time without the option; 0: any.
 */
std::shared_ptr<reading_limits> add_reading_limits(CLI::App &command, qint64 seconds);

#endif
