// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_PSEUDO_TERMINAL_H
#define TESTS_HOST_PSEUDO_TERMINAL_H

#include "tests/host/host_program.h"

#include <QByteArray>
#include <QProcess>

/** A terminal that stands for a stream of a program. */
class pseudo_terminal
{
public:
    /** @p columns 0: it does not know its width. */
    explicit pseudo_terminal(int columns);
    ~pseudo_terminal();
    pseudo_terminal(const pseudo_terminal &) = delete;
    pseudo_terminal &operator=(const pseudo_terminal &) = delete;

    /** Runs the program with the terminal as this stream. */
    host_result run(const host_program &host, const QStringList &arguments, int stream);

    /** What the program wrote to it, less than the terminal holds, with plain line ends. */
    QByteArray text() const;

private:
    int master;
    int terminal;
};

#endif
