// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/worker.h"

#include "host/files/host_error.h"
#include "host/files/transfer.h"
#include "host/files/uncaught_exception.h"
#include "host/run/inspection.h"
#include "host/run/source_survey.h"
#include "host/run/taken_evidence.h"
#include "host/run/worker_environment.h"
#include "host/run/worker_protocol.h"
#include "host/worker/cancellation.h"
#include "host/worker/confinement.h"
#include "host/worker/extraction.h"
#include "host/worker/memory_limit.h"
#include "host/worker/plugin_loader.h"
#include "host/worker/sqlite_memory.h"
#include "plugin/bluetooth_logs.h"

#include <QApplication>
#include <QFileInfo>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <system_error>
#include <thread>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytes_between_events = qint64(64) << 20;

int events = -1; // the descriptor that the watching process reads

/** Nothing is allocated here: there may be no memory left. */
[[noreturn]] void end_without_memory()
{
    static_cast<void>(::write(events, no_memory_line.data(), size_t(no_memory_line.size())) > 0);
    ::_exit(int(worker_end::without_memory));
}

/** Handles uncaught exceptions, also bad_alloc out of noexcept code. */
[[noreturn]] void terminate_work()
{
    if (is_uncaught_bad_alloc())
        end_without_memory();
    std::abort();
}

void send(QByteArrayView line)
{
    if (!write_all(events, line))
        ::_exit(int(worker_end::failed)); // nobody listens any more
}

/** Standard output becomes a line to the watching process alone: whatever else is printed goes to standard error. */
void take_over_standard_output()
{
    events = ::dup(STDOUT_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

std::string order_line()
{
    std::string line;
    if (!std::getline(std::cin, line))
        ::_exit(int(worker_end::failed)); // the watching process is gone
    return line;
}

/** Ends this process when the parent closes our input. The thread ends at the start line, if @p until_start. */
std::thread end_with_the_watcher(bool until_start)
{
    cancellation::hold();
    std::thread watch([until_start] {
        char byte = 0;
        do {
            const auto count = ::read(STDIN_FILENO, &byte, 1);
            if (count == 0 || (count < 0 && errno != EINTR))
                ::_exit(int(worker_end::failed));
        } while (!until_start || byte != '\n');
    });
    cancellation::release();
    return watch;
}

/** What reads the evidence and runs the plug-in is confined, with all threads: the one that watches comes after. */
void confine(const source_request &request, const QString &writable)
{
    confinement in_force;
    if (request.options.is_confined) {
        QStringList readable{request.source.path, request.source.root, request.source.log_file, request.case_directory};
        if (request.source.is_taken_out) // the other files of an image stand beside its first
            readable.append(QFileInfo(request.source.path).path());
        if (request.source.follow_links)
            readable.append(u"/"_s);
        in_force = confine_process(readable, {writable});
    }
    send(confined_line(in_force.to_json()));
    end_with_the_watcher(false).detach();
}

void confine_to_source(const source_request &request)
{
    confine(request, request.layout().folder());
    use_temporary_folder(request.layout().temporary_folder());
}

void set_limits(qint64 mebibytes)
{
    limit_memory(mebibytes);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is reported by what writes it
}

/** Sends how many bytes were hashed or read, not too often. */
class byte_reporter
{
public:
    explicit byte_reporter(QByteArray (*line)(qint64 more_bytes))
        : line_of(line)
    {
    }

    void operator()(qint64 bytes)
    {
        unsent += bytes;
        if (unsent < bytes_between_events)
            return;
        send(line_of(unsent));
        unsent = 0;
    }

    ~byte_reporter()
    {
        if (unsent > 0)
            send(line_of(unsent));
    }

private:
    QByteArray (*line_of)(qint64 more_bytes);
    qint64 unsent = 0;
};

void send_inspection(const source_request &request, const evidence_state &evidence)
{
    std::signal(SIGINT, SIG_IGN); // what was done is looked at even if the examiner has had enough
    byte_reporter hashed(hashed_line);
    const inspection found = inspect(request, evidence, [&hashed](qint64 bytes) { hashed(bytes); });
    send(inspected_line(found));
}

/** Takes the evidence of a container out into the case; the request is then of what stands there. */
exported_source take_out(source_request &request)
{
    exported_source taken;
    {
        byte_reporter hashed(hashed_line);
        byte_reporter read(read_line);
        const source_layout layout = request.layout();
        container_observers observers;
        observers.read = [&read](qint64 bytes) { read(bytes); };
        if (!request.options.skips_container_hash)
            observers.hashed = [&hashed](qint64 bytes) { hashed(bytes); };
        taken = export_evidence(choice_of(request), {layout.temporary_folder() + u"/taken"_s, layout.evidence_folder()},
                                observers);
    }
    request.source = source_taken_out(request, taken);
    send(taken_out_line({request.source, taken.warnings, taken.errors}));
    return taken;
}

void extract(source_request request)
{
    std::thread &watch = *new std::thread(end_with_the_watcher(true)); // lives on when the plug-in ends us
    std::unique_ptr<bluetooth_logs> plugin = load_plugin(request.options.plugin_file);
    send(loaded_line());
    watch.join();
    confine_to_source(request);

    std::optional<exported_source> taken;
    if (request.source.is_taken_out)
        taken = take_out(request);
    evidence_state evidence;
    {
        byte_reporter hashed(hashed_line);
        const source_layout layout = request.layout();
        evidence = look_before(request.source, {layout.evidence_folder(), layout.ios_lines(), layout.unparsed_lines()},
                               request.options.max_database << 20, [&hashed](qint64 bytes) { hashed(bytes); });
    }
    if (taken)
        add_origins(evidence, *taken);
    send(looked_line(evidence));

    const QStringList all_tables = request.options.tables;
    for (const QString &table : unread_tables(request, evidence))
        request.options.tables.removeAll(table);
    extraction_observer observer(request.options.tables, send);
    const plugin_log_end log = run_extraction(*plugin, request, observer, end_without_memory);
    plugin.reset();
    send(extracted_line(log));

    request.options.tables = all_tables;
    send_inspection(request, evidence);
}

/** The plug-in is a widget. Qt gets none of our arguments, and none of its threads receives Ctrl-C. */
void make_application(worker_order::task task)
{
    static int argument_count = 1;
    static char name[] = "bluetooth-logs";
    static char *arguments[] = {name, nullptr};
    cancellation::hold();
    if (task == worker_order::task::extract)
        new QApplication(argument_count, arguments);
    else if (!QCoreApplication::instance()) // a copy of a process has one
        new QCoreApplication(argument_count, arguments);
    cancellation::release();
}

int work()
{
    const worker_order order = worker_order::from_line(QByteArray::fromStdString(order_line()));
    const source_request &request = order.request;
    try {
        make_application(order.to_do);
        set_limits(request.options.memory_limit);
        switch (order.to_do) {
        case worker_order::task::extract:
            extract(request);
            break;
        case worker_order::task::inspect:
            confine_to_source(request);
            send_inspection(request, order.evidence);
            break;
        case worker_order::task::settle:
            confine_to_source(request);
            settle_result(request);
            break;
        case worker_order::task::survey:
            confine(request, {}); // nothing is written
            send(surveyed_line(survey_of_container(choice_of(request))));
            break;
        }
    } catch (const host_error &error) {
        send(problem_line(error));
        return int(worker_end::failed);
    } catch (const std::bad_alloc &) {
        end_without_memory();
    } catch (const std::system_error &error) { // no thread more, for instance
        send(problem_line(host_error(error_kind::io, u"the system refuses what the program needs: "_s
                                                         + QString::fromLocal8Bit(error.what()))));
        return int(worker_end::failed);
    }
    return 0;
}

/** Drops Qt's warnings about the missing desktop session. */
void report_only_what_ends_us(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

int run_worker()
{
    take_over_standard_output();
    std::set_terminate(terminate_work);
    std::setlocale(LC_ALL, ""); // of the environment; a copy of a process has another
    make_sqlite_memory_watchable();
    static_cast<void>(::chdir("/") == 0);
    qInstallMessageHandler(report_only_what_ends_us);
    const int code = work();
    std::fflush(nullptr);
    ::_exit(code); // what the plug-in leaves behind is not run: its work is done and counted
}
