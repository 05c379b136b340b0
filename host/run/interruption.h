// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_INTERRUPTION_H
#define HOST_RUN_INTERRUPTION_H

/**
 * Ctrl-C for a run. While an object of this class lives, the first one asks the run to end; those who work on it look
 * at was_asked_for(). A second one ends the program at once with 130.
 */
class interruption
{
public:
    interruption();
    ~interruption();
    interruption(const interruption &) = delete;
    interruption &operator=(const interruption &) = delete;

    /** Whether there was a Ctrl-C since construction. */
    static bool was_asked_for();
};

#endif
