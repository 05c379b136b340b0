// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_PROGRESS_LINES_H
#define HOST_CLI_PROGRESS_LINES_H

#include "host/text/terminal_text.h"

/** The last lines of the terminal that standard error is; they show how far a run has come. */
class progress_lines
{
public:
    /** Lines that are not wanted are never shown. */
    explicit progress_lines(bool wanted);

    /** Shows the lines in place of those before, as much of each as the terminal's width holds. */
    void show(const terminal_texts &lines);

    /** Makes room for other lines. */
    void clear();

private:
    bool is_wanted;
    qsizetype shown = 0;
};

#endif
