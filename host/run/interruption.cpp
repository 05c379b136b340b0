// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/interruption.h"

#include "host/files/host_error.h"

#include <csignal>

#include <unistd.h>

namespace {

volatile std::sig_atomic_t interrupt_count = 0;

extern "C" void on_interrupt(int)
{
    if (interrupt_count != 0)
        ::_exit(int(exit_code::interrupted)); // the worker processes end with this one
    interrupt_count = 1;
}

} // namespace

interruption::interruption()
{
    interrupt_count = 0;
    struct sigaction action = {};
    action.sa_handler = on_interrupt;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
}

interruption::~interruption()
{
    std::signal(SIGINT, SIG_DFL);
}

bool interruption::was_asked_for()
{
    return interrupt_count != 0;
}
