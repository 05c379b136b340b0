// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_INTERRUPT_H
#define HOST_CLI_INTERRUPT_H

class bluetooth_logs;

/** Ctrl-C. The first one cancels the extraction that runs, a second one ends the program at once with 130. */
class cancellation
{
public:
    /** From here on Ctrl-C cancels @p plugin; until then it ends the program as usual. */
    explicit cancellation(bluetooth_logs *plugin);
    ~cancellation();
    cancellation(const cancellation &) = delete;
    cancellation &operator=(const cancellation &) = delete;

    /** Whether there was a Ctrl-C since construction. */
    bool came() const;

    /** Threads that are started between these two never get Ctrl-C, so that it always reaches the main thread. */
    static void hold();
    static void release();
};

#endif
