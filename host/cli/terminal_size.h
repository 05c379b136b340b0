// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_TERMINAL_SIZE_H
#define HOST_CLI_TERMINAL_SIZE_H

#include <QtGlobal>

#include <optional>

/**
 * The columns of the terminal that the open file @p descriptor is: those of the environment variable COLUMNS, which
 * the examiner may set, else what the terminal says. None where it is no terminal or nobody knows.
 */
std::optional<qsizetype> terminal_columns(int descriptor);

#endif
