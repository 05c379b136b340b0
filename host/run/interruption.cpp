// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/interruption.h"

#include <csignal>

#include <unistd.h>

namespace {

constexpr int endings[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interrupt_count = 0;

extern "C" void on_interrupt(int)
{
    if (interrupt_count == 2)
        ::_exit(128 + SIGINT); // the worker processes end with this one
    interrupt_count = interrupt_count + 1;
}

/** Somebody who starts the program with nohup wants it to go on without the terminal. */
bool is_ignored_hangup(int signal)
{
    struct sigaction present = {};
    return signal == SIGHUP && ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

} // namespace

interruption::interruption()
{
    interrupt_count = 0;
    struct sigaction action = {};
    action.sa_handler = on_interrupt;
    action.sa_flags = SA_RESTART;
    for (const int signal : endings) {
        sigaddset(&action.sa_mask, signal); // one at a time, so that none is lost between two looks
        if (!is_ignored_hangup(signal))
            ::sigaction(signal, &action, nullptr);
    }
}

interruption::~interruption()
{
    for (const int signal : endings) {
        if (!is_ignored_hangup(signal))
            std::signal(signal, SIG_DFL);
    }
}

int interruption::times()
{
    return interrupt_count;
}
