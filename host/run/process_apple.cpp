// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/process_platform.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

bool open_pipe(int (&ends)[2])
{
    return ::pipe(ends) == 0 && ::fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0
           && ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0;
}

QString name_of_signal(int signal)
{
    const bool is_known = signal > 0 && signal < NSIG;
    return is_known ? QString(u"SIG"_s + QString::fromLatin1(sys_signame[signal]).toUpper())
                    : QString(u"signal "_s + QString::number(signal));
}
