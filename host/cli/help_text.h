// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_HELP_TEXT_H
#define HOST_CLI_HELP_TEXT_H

#include "host/text/terminal_text.h"

#include <CLI/CLI.hpp>

/**
 * The help of the program, or of one of its commands: how it is called, its arguments, its options, and its footer.
 * What stands behind a tabulator in the footer begins at one column. No line but the footer's has more than 100
 * columns.
 */
terminal_texts help_of(const CLI::App &command);

#endif
