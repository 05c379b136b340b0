// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_SHELL_TEXT_H
#define HOST_CLI_SHELL_TEXT_H

#include "host/text/terminal_text.h"

#include <QString>

/** A text as one word for a shell, so that a line with it can be pasted; quoted where it must be. */
terminal_text shell_word(const QString &text);

/** This program as a shell finds it: its name alone where that leads to it, else its path. */
terminal_text shell_name_of_program();

#endif
