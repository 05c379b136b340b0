// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_INTERRUPTION_H
#define HOST_RUN_INTERRUPTION_H

/**
 * Ctrl-C, SIGTERM and SIGHUP for a run; SIGHUP only where the caller does not have it ignored. While an object of this
 * class lives, the first one asks the run to end, the second one to end at once; those who work on it look at times().
 * A third one ends the program without another word.
 */
class interruption
{
public:
    interruption();
    ~interruption();
    interruption(const interruption &) = delete;
    interruption &operator=(const interruption &) = delete;

    /** How often the run was asked to end since construction. */
    static int times();

    static bool was_asked_for()
    {
        return times() > 0;
    }
};

#endif
