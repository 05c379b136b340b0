// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_NOTE_COMMAND_H
#define HOST_CLI_NOTE_COMMAND_H

#include "host/case/case_notes.h"
#include "host/cli/console.h"
#include "host/cli/exit_code.h"

#include <optional>

/** What is to be done with the notes of a case; one of them. */
struct note_options
{
    QString directory;            ///< absolute
    case_note note;               ///< to be added; its author may be empty
    bool lists = false;           ///< the notes are shown
    std::optional<qint64> remove; ///< the number of the note to remove
};

/** Adds, removes or lists notes. Throws host_error. */
exit_code run_note(const note_options &options, console &out);

#endif
