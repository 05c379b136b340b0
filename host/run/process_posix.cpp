// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/process_platform.h"

#include <cstring>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

bool open_pipe(int (&ends)[2])
{
    return ::pipe2(ends, O_CLOEXEC) == 0;
}

QString name_of_signal(int signal)
{
    const char *name = ::sigabbrev_np(signal);
    return name ? QString(u"SIG"_s + QLatin1StringView(name)) : QString(u"signal "_s + QString::number(signal));
}
