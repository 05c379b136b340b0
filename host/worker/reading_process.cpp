// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/reading_process.h"

#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/files/uncaught_exception.h"
#include "host/files/unfinished_file.h"
#include "host/run/child_process.h"
#include "host/run/interruption.h"
#include "host/worker/confinement.h"
#include "host/worker/memory_limit.h"

#include <QDeadlineTimer>

#include <cerrno>
#include <csignal>
#include <exception>
#include <new>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int milliseconds_between_looks = 50;
constexpr int milliseconds_to_end = 2000; // once it was asked to
constexpr int code_without_memory = 254;  // no command ends with it

std::terminate_handler usual_terminate = nullptr;
bool is_child = false;

[[noreturn]] void terminate_reading()
{
    if (is_uncaught_bad_alloc())
        ::_exit(code_without_memory);
    usual_terminate();
    std::abort();
}

/** Where a folder is to be made: the nearest one above it that is there. */
QString present_folder(QString path)
{
    while (path.size() > 1 && !path_exists(path))
        path = path.left(qMax<qsizetype>(1, path.lastIndexOf(u'/')));
    return path;
}

/** From here on this process is the child. */
int read_confined(const reading_limits &limits, pid_t parent, const std::function<int()> &read)
{
    is_child = true;
    end_with(parent);
    unfinished_file::remove_on_signals();
    const bool is_limited = limit_memory(limits.memory);
    if (is_limited)
        usual_terminate = std::set_terminate(terminate_reading);
    QStringList writable;
    for (const QString &folder : limits.writable)
        writable.append(present_folder(folder));
    confine_process({u"/"_s}, writable);
    try {
        return read();
    } catch (const std::bad_alloc &) {
        if (!is_limited)
            throw;
        return code_without_memory;
    }
}

/** The child, as the process sees it that waits for its end. */
class reading_child
{
public:
    /** @p end_of_child can be read once the child is gone. */
    reading_child(pid_t number, int end_of_child)
        : process(number)
        , gone(end_of_child)
    {
    }

    child_end wait(qint64 seconds)
    {
        const interruption signals;
        const QDeadlineTimer limit = seconds == 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                                  : QDeadlineTimer(seconds * 1000);
        child_end end;
        int status = 0;
        while (!has_ended(status)) {
            pollfd look{gone, POLLIN, 0};
            ::poll(&look, 1, milliseconds_between_looks);
            if (limit.hasExpired())
                end.is_timed_out = true;
            if (end.is_timed_out || interruption::was_asked_for())
                ask_to_end();
        }
        if (interruption::was_asked_for())
            throw host_error(error_kind::interrupted, u"interrupted"_s);
        end.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
        end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        return end;
    }

private:
    bool has_ended(int &status) const
    {
        const pid_t ended = ::waitpid(process, &status, WNOHANG);
        if (ended == -1 && errno != EINTR)
            throw host_error(error_kind::io, u"the process that reads the case is lost: "_s + system_error_text(errno));
        return ended == process;
    }

    /** So that it can remove what is not finished; then it is ended. */
    void ask_to_end()
    {
        if (!is_asked) {
            patience.setRemainingTime(milliseconds_to_end);
            is_asked = true;
            ::kill(process, SIGTERM);
            ::kill(process, SIGCONT); // one that somebody stopped would never see it
        } else if (patience.hasExpired() || interruption::times() > 1) {
            ::kill(process, SIGKILL);
        }
    }

    pid_t process;
    int gone;
    QDeadlineTimer patience;
    bool is_asked = false;
};

[[noreturn]] void fail(const QString &reason)
{
    throw host_error(error_kind::incomplete, reason);
}

int code_of(const child_end &end, const reading_limits &limits)
{
    if (end.is_timed_out)
        fail(u"reading the case took longer than the "_s + QString::number(limits.timeout) + u" s of --timeout"_s);
    if (end.exit_code == code_without_memory)
        fail(u"out of memory: reading the case needs more than the "_s + QString::number(limits.memory)
             + u" MiB of --memory-limit"_s);
    if (end.signal == SIGPIPE) { // nobody reads the output any more: as if there were no child
        std::signal(SIGPIPE, SIG_DFL);
        ::raise(SIGPIPE);
    }
    if (end.signal != 0)
        fail(u"the process that read the case crashed with "_s + end.signal_name());
    return end.exit_code;
}

} // namespace

bool is_reading_process()
{
    return is_child;
}

int run_in_reading_process(const reading_limits &limits, const std::function<int()> &read)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        throw host_error(error_kind::io, u"no pipe can be made: "_s + system_error_text(errno));
    descriptor gone(ends[0]);
    descriptor held(ends[1]); // by the child alone, as long as it lives
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == -1)
        throw host_error(error_kind::io,
                         u"the process that reads the case cannot be started: "_s + system_error_text(errno));
    if (child == 0)
        return read_confined(limits, parent, read);
    held.close();
    return code_of(reading_child(child, gone.number()).wait(limits.timeout), limits);
}
