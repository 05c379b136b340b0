// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/child_process.h"

#include "host/files/host_error.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"
#include "host/run/process_platform.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <vector>

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ; // NOLINT(readability-redundant-declaration): not every system's headers declare it

using namespace Qt::StringLiterals;

namespace {

constexpr int milliseconds_between_looks = 50; // at the clock and at Ctrl-C
constexpr qsizetype longest_line = qsizetype(1) << 28;

/** What the child takes over from this process, and what not. */
class spawn_settings
{
public:
    spawn_settings(int input, int output, int errors)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~spawn_settings()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    spawn_settings(const spawn_settings &) = delete;
    spawn_settings &operator=(const spawn_settings &) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

/** In a copy of the process: what posix_spawn() does for another program. */
void take_over_streams(descriptor &input, descriptor &output, descriptor &errors)
{
    ::setpgid(0, 0);
    for (int signal = 1; signal < NSIG; ++signal)
        std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    int stream = STDIN_FILENO;
    for (descriptor *const end : {&input, &output, &errors}) {
        ::dup2(end->number(), stream++);
        end->close();
    }
}

std::vector<char *> pointers(const QList<QByteArray> &texts)
{
    std::vector<char *> result;
    for (const QByteArray &text : texts)
        result.push_back(const_cast<char *>(text.constData()));
    result.push_back(nullptr);
    return result;
}

/** Whether the child has ended; waitpid() can still ask how. */
bool has_ended(pid_t process)
{
    siginfo_t info = {};
    return ::waitid(P_PID, id_t(process), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == process;
}

/** Cuts what comes from a pipe into lines. */
class line_reader
{
public:
    /** Takes what is there. False at the end. */
    bool read(int file, const std::function<void(const QByteArray &line)> &on_line)
    {
        char bytes[65536];
        const qsizetype count = read_some(file, bytes, sizeof bytes);
        if (count <= 0) {
            if (!rest.isEmpty())
                on_line(rest);
            return false;
        }
        const qsizetype known = rest.size(); // holds no line end
        rest.append(bytes, count);
        qsizetype start = 0;
        for (qsizetype end = rest.indexOf('\n', known); end != -1; end = rest.indexOf('\n', start)) {
            on_line(rest.sliced(start, end - start));
            start = end + 1;
        }
        rest.remove(0, start);
        if (rest.size() > longest_line)
            rest.clear();
        return true;
    }

private:
    QByteArray rest;
};

} // namespace

QString child_end::signal_name() const
{
    return name_of_signal(signal);
}

child_process::pipe_ends child_process::make_pipe()
{
    int ends[2] = {-1, -1};
    if (!open_pipe(ends))
        throw host_error(error_kind::io, u"no pipe can be made: "_s + system_error_text(errno));
    return {descriptor(ends[0]), descriptor(ends[1])};
}

void child_process::keep_own_ends(child_pipes &made)
{
    input = std::move(made.to_child.writing);
    output = std::move(made.from_child.reading);
    errors = std::move(made.errors_of_child.reading);
}

child_process::child_process(const QString &program, const QStringList &arguments, const QList<QByteArray> &environment)
{
    child_pipes made{make_pipe(), make_pipe(), make_pipe()};
    const QByteArray file = QFile::encodeName(program);
    QList<QByteArray> texts{file};
    for (const QString &argument : arguments)
        texts.append(QFile::encodeName(argument));
    const spawn_settings settings(made.to_child.reading.number(), made.from_child.writing.number(),
                                  made.errors_of_child.writing.number());
    const int error = ::posix_spawn(&process, file.constData(), &settings.actions, &settings.attributes,
                                    pointers(texts).data(), pointers(environment).data());
    if (error != 0) {
        process = -1;
        throw host_error(error_kind::io, program + u" cannot be started: "_s + system_error_text(error));
    }
    keep_own_ends(made);
}

child_process::child_process(const std::function<int()> &work, const QList<QByteArray> &environment)
{
    child_pipes made{make_pipe(), make_pipe(), make_pipe()};
    std::vector<char *> variables = pointers(environment);
    std::fflush(nullptr); // what was said is not said again by the copy
    process = ::fork();
    if (process == -1)
        throw host_error(error_kind::io, u"no process can be started: "_s + system_error_text(errno));
    if (process == 0) {
        take_over_streams(made.to_child.reading, made.from_child.writing, made.errors_of_child.writing);
        keep_own_ends(made);
        for (descriptor *const parents : {&input, &output, &errors})
            parents->close();
        environ = variables.data();
        ::_exit(work());
    }
    ::setpgid(process, process); // the child does so too: whoever comes first
    keep_own_ends(made);
}

child_process::~child_process()
{
    if (process == -1)
        return;
    ::kill(-process, SIGKILL);
    int status = 0;
    while (::waitpid(process, &status, 0) == -1 && errno == EINTR) {
    }
}

void child_process::write(QByteArrayView lines)
{
    if (!write_all(input.number(), lines))
        input.close(); // a child that got half of it must not wait for the rest
}

child_end child_process::wait(const std::function<void(const QByteArray &line)> &on_output,
                              const std::function<void(const QByteArray &line)> &on_error, qint64 seconds,
                              const std::function<int()> &cancellations)
{
    child_end end;
    const QDeadlineTimer deadline(seconds == 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                               : QDeadlineTimer(seconds * 1000));
    int sent = 0; // of the cancellations
    bool is_ended = false;
    int status = 0;
    line_reader output_lines;
    line_reader error_lines;
    // The pipes may outlive the child in a process that the plug-in left behind: the child's own end is what counts.
    while (output.is_open() || errors.is_open() || !is_ended) {
        pollfd pipes[] = {{output.number(), POLLIN, 0}, {errors.number(), POLLIN, 0}};
        const bool is_silent = !output.is_open() && !errors.is_open(); // it is about to end
        const int ready = ::poll(pipes, 2, is_silent ? 1 : milliseconds_between_looks);
        if (ready > 0 && pipes[0].revents != 0 && !output_lines.read(output.number(), on_output)) {
            output.close();
            input.close(); // whoever cannot be heard any more is not waited for: it ends without its input
        }
        if (ready > 0 && pipes[1].revents != 0 && !error_lines.read(errors.number(), on_error))
            errors.close();
        if (is_ended && ready <= 0)
            break;
        if (!is_ended && has_ended(process)) {
            ::kill(-process, SIGKILL); // what it may have left behind in its group, while the number is still its own
            while (::waitpid(process, &status, 0) == -1 && errno == EINTR) {
            }
            is_ended = true;
        }
        if (const int cancelled = cancellations(); !is_ended && cancelled > sent) {
            ::kill(cancelled == 1 ? process : -process, cancelled == 1 ? SIGINT : SIGKILL);
            ::kill(-process, SIGCONT); // a child that somebody stopped would never see it
            sent = cancelled;
        }
        if (!is_ended && deadline.hasExpired() && !end.is_timed_out) {
            end.is_timed_out = true;
            ::kill(-process, SIGKILL);
        }
    }
    process = -1;
    end.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return end;
}
