// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_CANCELLATION_H
#define HOST_WORKER_CANCELLATION_H

class bluetooth_logs;

/** The signal by which the watching process cancels the extraction. A second one ends the process at once. */
class cancellation
{
public:
    /** From here on the signal cancels @p plugin; until then it ends the process as usual. */
    explicit cancellation(bluetooth_logs *plugin);
    ~cancellation();
    cancellation(const cancellation &) = delete;
    cancellation &operator=(const cancellation &) = delete;

    /** Threads that are started between these two never get the signal, so that it always reaches the main thread. */
    static void hold();
    static void release();
};

#endif
