// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CHILD_PROCESS_H
#define HOST_RUN_CHILD_PROCESS_H

#include "host/files/descriptor.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

#include <sys/types.h>

/** How a child process ended. */
struct child_end
{
    int exit_code = 0;
    int signal = 0; ///< 0: it ended by itself
    bool is_timed_out = false;

    /** "SIGSEGV". */
    QString signal_name() const;
};

/**
 * A child process that talks in lines. Its input closes when this process ends; that makes it exit. It does not get the
 * terminal's Ctrl-C. QProcess would reap the child by itself: its group could not be killed while the number is its
 * own.
 */
class child_process
{
public:
    /** @p environment: "NAME=value". Throws host_error (io). */
    child_process(const QString &program, const QStringList &arguments, const QList<QByteArray> &environment);
    /** A copy of this process that does @p work, with the code that it gives: nothing is loaded again. Throws as above.
     */
    child_process(const std::function<int()> &work, const QList<QByteArray> &environment);
    /** Kills the child if it still runs. */
    ~child_process();
    child_process(const child_process &) = delete;
    child_process &operator=(const child_process &) = delete;

    /** Whole lines for the child's standard input. A child that is gone gets none, which wait() reports. */
    void write(QByteArrayView lines);

    /**
     * Passes every line to one of the two until the child has ended; kills it after @p seconds (0: never). When
     * @p cancellations gives 1 the child gets SIGINT, from 2 on it is killed. Its input closes with its output.
     */
    child_end wait(const std::function<void(const QByteArray &line)> &on_output,
                   const std::function<void(const QByteArray &line)> &on_error, qint64 seconds,
                   const std::function<int()> &cancellations);

private:
    struct pipe_ends
    {
        descriptor reading;
        descriptor writing;
    };
    struct child_pipes
    {
        pipe_ends to_child;
        pipe_ends from_child;
        pipe_ends errors_of_child;
    };

    static pipe_ends make_pipe();
    void keep_own_ends(child_pipes &made);

    pid_t process = -1;
    descriptor input;
    descriptor output;
    descriptor errors;
};

#endif
