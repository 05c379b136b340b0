// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"
#include "host/files/uncaught_exception.h"
#include "host/run/source_survey.h"
#include "host/worker/reading_process.h"
#include "host/worker/worker.h"

#include <QCoreApplication>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

exit_code run(const command_line &line, console &out)
{
    exit_code code = line.command(out);
    if (code == exit_code::done && out.has_printed_error()) // whoever printed it: 0 promises that there was none
        code = exit_code::partial;
    if (out.finish())
        return code;
    out.error(u"standard output cannot be written"_s);
    return code == exit_code::done ? exit_code::internal_error : code;
}

exit_code run_reporting_errors(const command_line &line)
{
    console out(line.output);
    try {
        if (line.problem)
            throw *line.problem;
        if (!line.reading)
            return run(line, out);
        return exit_code(run_in_reading_process(*line.reading, [&line, &out] { return int(run(line, out)); }));
    } catch (const host_error &error) {
        out.error(error.message());
        return exit_code_of(error.kind());
    } catch (const std::bad_alloc &) {
        out.error(u"there is not enough memory"_s);
    } catch (const std::exception &error) {
        out.error(u"the system refuses what the program needs: "_s + QString::fromLocal8Bit(error.what()));
    }
    return exit_code::internal_error;
}

/**
 * Gives the three standard streams a file each where the caller closed them: the next file that is opened would take
 * their place, and a message would go into it. These are opened the wrong way round, so that using them fails.
 */
void keep_standard_streams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) == -1)
            ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY); // the lowest free number: this one
    }
}

/** For exceptions that nobody catches, bad_alloc out of noexcept code for instance. Nothing is allocated here. */
[[noreturn]] void on_terminate()
{
    const char *text = is_uncaught_bad_alloc() ? "error: there is not enough memory\n"
                                               : "error: the program cannot go on\n";
    static_cast<void>(::write(STDERR_FILENO, text, std::strlen(text)) > 0);
    ::_exit(int(exit_code::internal_error));
}

} // namespace

int main(int argc, char **argv) // NOLINT(bugprone-exception-escape): an unknown one ends the process, and says so
{
    keep_standard_streams();
    if (argc == 2 && QLatin1StringView(argv[1]) == worker_argument)
        return run_worker();
    for (const char *variable : {"QT_FATAL_WARNINGS", "QT_FATAL_CRITICALS", "QT_LOGGING_RULES"})
        qunsetenv(variable);
    std::signal(SIGCHLD, SIG_DFL); // where the caller ignores it, nobody learns how a worker ended
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is reported like a full disk
    std::set_terminate(on_terminate);
    std::setlocale(LC_ALL, "C.UTF-8"); // evidence is Unicode, whatever the terminal claims
    int application_argc = 1;
    const QCoreApplication application(application_argc, argv);
    survey_in_copies(run_worker);
    const exit_code code = run_reporting_errors(parse_command_line(argc, argv));
    if (is_reading_process()) {
        std::fflush(nullptr);
        ::_exit(int(code));
    }
    return int(code);
}
