// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/command_line.h"
#include "host/host_error.h"
#include "host/interrupt.h"

#include <QApplication>

#include <clocale>
#include <cstdlib>

#include <langinfo.h>

using namespace Qt::StringLiterals;

namespace {

/** Makes the run the same on a terminal, in a script and on a machine without a display. */
void settle_environment()
{
    std::setlocale(LC_ALL, "");
    if (qstrcmp(::nl_langinfo(CODESET), "UTF-8") != 0)
        qputenv("LC_ALL", "C.UTF-8"); // evidence is Unicode, whatever the terminal claims
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

/** Without a desktop session the toolkit complains of what only a desktop needs. */
void report_only_errors(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        console({}).error(message);
}

exit_code run(const command_line &line, const console &out)
{
    if (const auto *sample = std::get_if<sample_options>(&line.command))
        return run_sample(*sample, out);
    if (const auto *extract = std::get_if<extract_options>(&line.command))
        return run_extract(*extract, out);
    if (const auto *show = std::get_if<show_options>(&line.command))
        return run_show(*show, out);
    return exit_code::done;
}

exit_code run_reporting_errors(int argc, char **argv)
{
    console_options output;
    try {
        const command_line line = parse_command_line(argc, argv);
        output = line.output;
        const exit_code code = run(line, console(output));
        if (!console(output).finish())
            throw host_error(exit_code::internal_error, u"standard output cannot be written"_s);
        return code;
    } catch (const host_error &error) {
        console(output).error(error.message());
        return error.code();
    }
}

} // namespace

int main(int argc, char **argv)
{
    settle_environment();
    // The plug-in is a widget. Its toolkit gets none of our arguments, and no thread of its gets our Ctrl-C.
    int application_argc = 1;
    interrupt::hold();
    const QtMessageHandler usual_handler = qInstallMessageHandler(report_only_errors);
    const QApplication application(application_argc, argv);
    qInstallMessageHandler(usual_handler);
    interrupt::release();
    return int(run_reporting_errors(argc, argv));
}
