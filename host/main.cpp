// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"
#include "host/files/host_error.h"
#include "host/worker/worker.h"

#include <QCoreApplication>

#include <clocale>
#include <csignal>
#include <variant>

namespace {

exit_code run(const std::monostate &, const console &)
{
    return exit_code::done;
}

exit_code run(const sample_options &options, const console &out)
{
    return run_sample(options, out);
}

exit_code run(const extract_options &options, const console &out)
{
    return run_extract(options, out);
}

exit_code run(const collect_options &options, const console &out)
{
    return run_collect(options.case_directory, out);
}

exit_code run(const show_options &options, const console &out)
{
    return run_show(options, out);
}

exit_code run(const check_request &request, const console &out)
{
    return run_verify(request, out);
}

exit_code run(const report_options &options, const console &out)
{
    return run_report(options, out);
}

exit_code run_reporting_errors(int argc, char **argv)
{
    console_options output;
    try {
        const command_line line = parse_command_line(argc, argv);
        output = line.output;
        const console out(output);
        const exit_code code = std::visit([&out](const auto &command) { return run(command, out); }, line.command);
        if (!out.finish())
            throw host_error(exit_code::internal_error, QStringLiteral("standard output cannot be written"));
        return code;
    } catch (const host_error &error) {
        console(output).error(error.message());
        return error.code();
    }
}

} // namespace

int main(int argc, char **argv) // NOLINT(bugprone-exception-escape): an unknown one ends the process, and says so
{
    if (argc == 2 && QLatin1StringView(argv[1]) == worker_argument)
        return run_worker();
    for (const char *variable : {"QT_FATAL_WARNINGS", "QT_FATAL_CRITICALS", "QT_LOGGING_RULES"})
        qunsetenv(variable);
    std::setlocale(LC_ALL, "C.UTF-8"); // evidence is Unicode, whatever the terminal claims
    int application_argc = 1;
    const QCoreApplication application(application_argc, argv);
    std::signal(SIGPIPE, SIG_IGN); // of a worker that is gone; what cannot be printed is told by its stream
    return int(run_reporting_errors(argc, argv));
}
