// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_run.h"

#include "host/case/case_files.h"
#include "host/files/file_lock.h"
#include "host/files/free_room.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"
#include "host/run/interruption.h"
#include "host/run/notices_before_run.h"
#include "host/run/source_outcome.h"
#include "host/run/worker_environment.h"
#include "host/source/evidence_files.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>

#include <cerrno>
#include <csignal>
#include <memory>
#include <utility>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int times_to_stop_at_once = 2;

/** Bytes of what is copied; the databases are copied twice: by the plug-in and by the host. */
qint64 bytes_to_stage(const source_request &request)
{
    qint64 bytes = 0;
    if (request.source.kind == &ios_uid_kind) // nothing of a log is copied
        return bytes;
    const qint64 largest = request.options.max_database << 20;
    for (const QString &path : evidence_paths(request.source)) {
        const qint64 size = QFileInfo(request.source.root + path).size();
        if (size <= largest)
            bytes += path.endsWith(".db"_L1) ? 2 * size : size;
    }
    return bytes;
}

/** The plug-in appends to its log and never creates it. */
void create_plugin_log(const QString &path)
{
    const descriptor file = open_without_links(path, O_WRONLY | O_CREAT | O_EXCL, 0644);
    if (!file.is_open())
        throw host_error(error_kind::io, path + u" cannot be written: "_s + system_error_text(errno));
}

/** The plug-in closes its log after each line, and leaves it to the system when it is on the disk. */
void sync_plugin_log(const source_layout &layout, source_record &judged)
{
    const descriptor file = open_without_links(layout.plugin_log(), O_RDONLY | O_NONBLOCK);
    if (!file.is_open() && errno == ENOENT)
        return; // it does not hold what the plug-in wrote, which is said
    if (!file.is_open() || ::fsync(file.number()) != 0)
        judged.add_error(u"plugin.log is not on the disk: "_s + system_error_text(errno));
}

/** Of a plug-in that was stopped: what it and its libraries put into the run's own folders for a while. Gives what
 * stays. */
QStringList remove_temporary_files(const source_layout &layout)
{
    QStringList problems;
    for (const QString &folder : {layout.temporary_folder(), layout.plugin_temporary_folder()}) {
        const int error = folder_entry(folder).remove_tree();
        if (error != 0 && error != ENOENT)
            problems.append(folder + u" cannot be removed: "_s + system_error_text(error));
    }
    return problems;
}

/** Whether nothing that the plug-in does can have ended it so: that concerns this source alone. */
bool was_killed_by_others(const child_end &end)
{
    return end.signal == SIGKILL || end.signal == SIGTERM || end.signal == SIGHUP || end.signal == SIGINT;
}

/** Files of the case's that were not finished, since the worker was stopped while it wrote them. */
void remove_unfinished_files(const source_layout &layout)
{
    for (const case_file &file : case_files) {
        if (file.beside == companions::unfinished)
            folder_entry(layout.folder() + u'/' + file.name + u".new"_s).remove();
    }
}

/** What SQLite keeps beside a database of the result while it works, and removes in the end. */
QStringList left_companions(const source_layout &layout)
{
    QStringList problems;
    for (const case_file &file : case_files) {
        if (file.beside != companions::sqlite || !file.name.startsWith("Artifacts_Result/"_L1))
            continue;
        for (const QString &name : names_of(file).sliced(1)) {
            if (path_exists(layout.folder() + u'/' + name))
                problems.append(name + u" was left beside its database"_s);
        }
    }
    return problems;
}

/** The one run of a source while it goes on. */
class running_source
{
public:
    running_source(const source_request &source, const case_facts &case_members, run_observer &run)
        : request(source)
        , facts(case_members)
        , observer(run)
    {
        record.number = request.number;
        record.name = request.name;
        record.path = request.source.path;
        name_kind();
    }

    source_record run(const std::function<void()> &prepare)
    {
        const child_end end = run_worker(worker_order::task::extract, prepare);
        if (failure)
            std::rethrow_exception(failure);
        report.end = end;
        if (!is_prepared && is_interrupted())
            throw host_error(error_kind::interrupted, u"interrupted before anything was written"_s);
        if (!is_prepared && !end.is_timed_out && !report.is_out_of_memory && !was_killed_by_others(end))
            throw_unusable_plugin();
        if (!is_prepared) {
            prepare();
            prepare_source();
        }
        if (is_without_evidence())
            give_up();
        // What the worker could not look at any more, another one does that never loads the plug-in.
        if (!report.inspected && report.looked && interruption::times() < times_to_stop_at_once)
            run_worker(worker_order::task::inspect, {});
        if (!report.inspected)
            run_worker(worker_order::task::settle, {});
        return finish();
    }

private:
    void name_kind()
    {
        if (const source_kind *kind = request.source.recorded_kind())
            record.type = kind->name;
        if (request.source.kind)
            record.driven_as = request.source.kind->name;
        record.container = request.source.container;
    }

    /** The container could be opened, and nothing of it can be taken: it is as if its source were not there. */
    bool is_without_evidence() const
    {
        return request.source.is_taken_out && !report.taken_out
               && (report.problem_kind == error_kind::not_found || report.problem_kind == error_kind::refused);
    }

    /** Leaves nothing behind of what was made for the source. */
    [[noreturn]] void give_up() const
    {
        remove_temporary_files(request.layout());
        request.layout().remove_run();
        throw host_error(*report.problem_kind, report.problems.last());
    }

    bool is_interrupted() const
    {
        return interruption::was_asked_for();
    }

    /** What was done is looked at even if the examiner has had enough; only a second word stops that too. */
    int cancellations(worker_order::task task)
    {
        if (failure)
            return 1;
        const int times = interruption::times();
        if (times == 1 && is_prepared && !std::exchange(is_cancelling, true))
            observer.cancelling(request);
        if (task == worker_order::task::settle)
            return 0;
        return task == worker_order::task::inspect && times < times_to_stop_at_once ? 0 : times;
    }

    child_end run_worker(worker_order::task task, const std::function<void()> &prepare)
    {
        child_process worker(QCoreApplication::applicationFilePath(), {u"worker"_s}, worker_environment());
        worker.write(worker_order{task, request, report.looked.value_or(evidence_state())}.to_line());
        const auto on_event = [&](const QByteArray &line) {
            const worker_event event = report.take(line);
            if (event == worker_event::taken_out) {
                request.source = report.taken_out->source;
                name_kind();
            }
            if (event == worker_event::loaded)
                start(worker, prepare);
            else
                emit_progress(event);
        };
        const auto on_error = [this](const QByteArray &line) {
            observer.worker_said(request, QString::fromUtf8(line));
        };
        return worker.wait(on_event, on_error, request.options.timeout, [this, task] { return cancellations(task); });
    }

    /** The plug-in can be used: now the case is laid out, and the worker may go on. */
    void start(child_process &worker, const std::function<void()> &prepare)
    {
        try {
            prepare();
            prepare_source();
            worker.write(start_word);
        } catch (const host_error &) {
            failure = std::current_exception();
        }
    }

    void prepare_source()
    {
        const source_layout layout = request.layout();
        make_folder(layout.folder());
        lock = std::make_unique<file_lock>(layout.lock());
        require_room(request.case_directory, bytes_to_stage(request));
        // The record comes first: whatever stops the program from here on, it says that the run did not end.
        record.status = source_status::running;
        record.files.emplace();
        record.started = utc_now();
        record.log_zone = QString::fromLatin1(QTimeZone::systemTimeZoneId());
        write_source_record(request, facts, record);
        make_folder(layout.temporary_folder());
        create_plugin_log(layout.plugin_log());
        observer.source_started(request, notices_before_run(request));
        is_prepared = true;
    }

    void emit_progress(worker_event event)
    {
        if (event == worker_event::hashed)
            observer.bytes_hashed(request, report.last_count);
        else if (event == worker_event::read)
            observer.bytes_read(request, report.last_count);
        else if (event == worker_event::records || event == worker_event::table_done)
            observer.records_announced(request, report.last_count, int(report.announced.size()));
    }

    [[noreturn]] void throw_unusable_plugin() const
    {
        const QString start = u"the plug-in file "_s + request.options.plugin_file + u" cannot be used: "_s;
        if (!report.problems.isEmpty())
            throw host_error(error_kind::io, report.problems.first());
        if (report.end.signal != 0)
            throw host_error(error_kind::io,
                             start + u"it crashed while it was loaded, with "_s + report.end.signal_name());
        throw host_error(error_kind::io, start + u"it ended the process while it was loaded, with exit code "_s
                                             + QString::number(report.end.exit_code));
    }

    source_record finish()
    {
        source_record judged = judge_source(request, record, report, is_interrupted());
        judged.finished = utc_now();
        for (const QString &problem : remove_temporary_files(request.layout()))
            judged.add_error(problem);
        remove_unfinished_files(request.layout());
        for (const QString &problem :
             judged.status == source_status::done ? left_companions(request.layout()) : QStringList())
            judged.add_error(problem);
        sync_plugin_log(request.layout(), judged);
        try {
            judged.files = list_files_of_source(case_layout(request.case_directory), request.number);
        } catch (const host_error &error) {
            judged.add_error(error.message());
        }
        try {
            write_source_record(request, facts, judged);
        } catch (const host_error &error) {
            // The record that is there says "running" for ever: the case counts as incomplete.
            judged.add_error(u"the record of the run, which still says that it goes on, "_s + error.message());
        }
        return judged;
    }

    source_request request; ///< of a container it changes once that was opened
    const case_facts &facts;
    run_observer &observer;
    source_record record;
    worker_report report;
    std::unique_ptr<file_lock> lock;
    std::exception_ptr failure; ///< of the preparation
    bool is_prepared = false;
    bool is_cancelling = false;
};

} // namespace

void write_source_record(const source_request &request, const case_facts &facts, const source_record &record)
{
    QJsonObject json = facts.members;
    const QJsonObject members = record.to_json();
    for (auto member = members.begin(); member != members.end(); ++member)
        json.insert(member.key(), member.value());
    write_json_file(request.layout().record(), json);
}

source_record run_source(const source_request &request, const case_facts &facts, run_observer &observer,
                         const std::function<void()> &prepare)
{
    return running_source(request, facts, observer).run(prepare);
}
