// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/cancellation.h"

#include "host/worker/worker.h"
#include "plugin/bluetooth_logs.h"

#include <csignal>

#include <unistd.h>

namespace {

volatile std::sig_atomic_t interrupt_count = 0;
bluetooth_logs *volatile cancel_target = nullptr;

/**
 * Extraction is synchronous: this thread is inside the plug-in, and only a signal handler can reach it there. The call
 * is allowed here because pub_cancel_extraction() does nothing but store true in plain flags that the extractors poll:
 * it takes no lock, allocates nothing and cannot be caught half way by itself.
 */
extern "C" void on_cancel_signal(int)
{
    if (interrupt_count != 0)
        ::_exit(int(worker_end::interrupted));
    interrupt_count = 1;
    cancel_target->pub_cancel_extraction();
}

void change_mask(int how)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    ::pthread_sigmask(how, &signals, nullptr);
}

} // namespace

cancellation::cancellation(bluetooth_logs *plugin)
{
    cancel_target = plugin;
    interrupt_count = 0;
    struct sigaction action = {};
    action.sa_handler = on_cancel_signal;
    action.sa_flags = SA_RESTART; // a read or write that it meets must not fail
    ::sigaction(SIGINT, &action, nullptr);
}

cancellation::~cancellation()
{
    std::signal(SIGINT, SIG_DFL);
    cancel_target = nullptr;
}

void cancellation::hold()
{
    change_mask(SIG_BLOCK);
}

void cancellation::release()
{
    change_mask(SIG_UNBLOCK);
}
