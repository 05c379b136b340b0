// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/pseudo_terminal.h"

#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

pseudo_terminal::pseudo_terminal(int columns)
    : master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    if (master == -1 || ::grantpt(master) != 0 || ::unlockpt(master) != 0)
        qFatal("no pseudo terminal");
    terminal = ::open(::ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    struct winsize size = {};
    size.ws_col = static_cast<unsigned short>(columns);
    if (terminal == -1 || ::ioctl(terminal, TIOCSWINSZ, &size) != 0)
        qFatal("no width of a pseudo terminal");
    ::fcntl(master, F_SETFL, O_NONBLOCK);
}

pseudo_terminal::~pseudo_terminal()
{
    ::close(terminal);
    ::close(master);
}

host_result pseudo_terminal::run(const host_program &host, const QStringList &arguments, int stream)
{
    QProcess process;
    process.setChildProcessModifier([this, stream] { ::dup2(terminal, stream); });
    host.start(process, arguments);
    return host_program::finish(process);
}

QByteArray pseudo_terminal::text() const
{
    QByteArray text;
    char bytes[4096];
    for (auto size = ::read(master, bytes, sizeof bytes); size > 0; size = ::read(master, bytes, sizeof bytes))
        text.append(bytes, size);
    return text.replace("\r\n", "\n");
}
