// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/unfinished_file.h"

#include <csignal>

#include <unistd.h>

namespace {

constexpr int most_files = 64;

std::atomic<const char *> paths[most_files];
static_assert(std::atomic<const char *>::is_always_lock_free); // a signal handler reads them

extern "C" void remove_and_end(int signal)
{
    for (const std::atomic<const char *> &place : paths) {
        const char *path = place.load();
        if (path && ::unlink(path) != 0)
            ::rmdir(path);
    }
    std::signal(signal, SIG_DFL);
    ::raise(signal); // comes once this handler has returned
}

} // namespace

unfinished_file::unfinished_file(const QByteArray &file)
    : path(file)
{
    for (std::atomic<const char *> &one : paths) {
        const char *nothing = nullptr;
        if (one.compare_exchange_strong(nothing, path.constData())) {
            place = &one;
            return;
        }
    }
}

unfinished_file::~unfinished_file()
{
    if (place)
        place->store(nullptr);
}

void unfinished_file::remove_on_signals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(signal, remove_and_end) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}
