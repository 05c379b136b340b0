// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_run.h"

#include "host/case/completeness.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/files/utc_time.h"
#include "host/run/case_plan.h"
#include "host/run/interruption.h"
#include "host/run/source_run.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/** Temporary folders go with all that is in them when the run ends: what others put there must be moved away first. */
void refuse_foreign_temporaries(const source_layout &layout)
{
    for (const QString &folder : {layout.temporary_folder(), layout.plugin_temporary_folder()}) {
        if (path_exists(folder))
            throw host_error(error_kind::refused,
                             u"this is not of an earlier run and stands in the way, move it elsewhere first: "_s
                                 + folder);
    }
}

/** Locks the case and makes room in it, once, when the first plug-in is loaded. */
class case_preparation
{
public:
    case_preparation(const case_request &case_to_prepare, const case_plan &case_to_run, run_observer &run)
        : request(case_to_prepare)
        , plan(case_to_run)
        , observer(run)
    {
    }

    void prepare()
    {
        const std::lock_guard guard(mutex);
        if (is_prepared)
            return;
        make_folder(request.directory);
        const case_layout layout(request.directory);
        if (!request.only)
            lock = std::make_unique<file_lock>(layout.lock());
        plan_case(request); // another run may have been here meanwhile
        remove_earlier_runs(layout);
        is_prepared = true;
    }

    bool is_done() const
    {
        const std::lock_guard guard(mutex);
        return is_prepared;
    }

private:
    void remove_earlier_runs(const case_layout &layout)
    {
        QList<int> numbers;
        for (const named_source &source : plan.to_run)
            numbers.append(source.number);
        if (request.earlier == case_request::earlier_run::removed && !request.only)
            numbers += layout.source_numbers();
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
        for (const int number : std::as_const(numbers)) {
            if (path_exists(layout.source(number).lock()))
                const file_lock nobody_works_here(layout.source(number).lock());
        }
        const bool is_removed = request.earlier == case_request::earlier_run::removed
                                || request.earlier == case_request::earlier_run::continued;
        QStringList kept;
        for (const int number : std::as_const(numbers)) {
            if (is_removed || was_left_incomplete(layout, number))
                kept += layout.source(number).remove_run();
        }
        if (!kept.isEmpty())
            observer.kept(kept);
        for (const named_source &source : plan.to_run)
            refuse_foreign_temporaries(layout.source(source.number));
        if (request.earlier == case_request::earlier_run::removed && !request.only) {
            QFile::remove(layout.manifest());
            QFile::remove(layout.manifest_hash());
            remove_other_folders(layout);
        }
    }

    /** The folders of sources that the case has no longer, if nothing else is in them. */
    void remove_other_folders(const case_layout &layout) const
    {
        QSet<int> ours;
        for (const named_source &source : plan.all)
            ours.insert(source.number);
        for (const int number : layout.source_numbers()) {
            if (ours.contains(number))
                continue;
            QFile::remove(layout.source(number).lock());
            QDir().rmdir(layout.source(number).folder());
        }
    }

    const case_request &request;
    const case_plan &plan;
    run_observer &observer;
    mutable std::mutex mutex;
    std::unique_ptr<file_lock> lock;
    bool is_prepared = false;
};

/** Lets sources that run side by side tell one observer. */
class shared_observer : public run_observer
{
public:
    explicit shared_observer(run_observer &run)
        : observer(run)
    {
    }

    void kept(const QStringList &paths) override
    {
        const std::lock_guard guard(mutex);
        observer.kept(paths);
    }
    void source_started(const source_request &request, const QList<run_message> &messages) override
    {
        const std::lock_guard guard(mutex);
        observer.source_started(request, messages);
    }
    void bytes_hashed(const source_request &request, qint64 bytes) override
    {
        const std::lock_guard guard(mutex);
        observer.bytes_hashed(request, bytes);
    }
    void records_announced(const source_request &request, qint64 records, int tables_done) override
    {
        const std::lock_guard guard(mutex);
        observer.records_announced(request, records, tables_done);
    }
    void worker_said(const source_request &request, const QString &line) override
    {
        const std::lock_guard guard(mutex);
        observer.worker_said(request, line);
    }
    void cancelling(const source_request &request) override
    {
        const std::lock_guard guard(mutex);
        if (!std::exchange(is_cancelling, true))
            observer.cancelling(request);
    }
    void source_finished(const source_request &request, const source_outcome &outcome) override
    {
        const std::lock_guard guard(mutex);
        observer.source_finished(request, outcome);
    }

private:
    run_observer &observer;
    std::mutex mutex;
    bool is_cancelling = false;
};

/** The sources that wait for their turn, and what became of the others. */
class source_queue
{
public:
    source_queue(const case_request &case_to_run, const case_plan &case_plan, run_observer &run)
        : request(case_to_run)
        , plan(case_plan)
        , observer(run)
        , preparation(case_to_run, case_plan, observer)
    {
    }

    case_tally run()
    {
        std::vector<std::thread> workers;
        const qsizetype jobs = std::clamp<qsizetype>(request.jobs, 1, plan.to_run.size());
        for (qsizetype i = 1; i < jobs; ++i)
            workers.emplace_back([this] { work(); });
        work();
        for (std::thread &worker : workers)
            worker.join();
        if (failure)
            std::rethrow_exception(failure);
        return tally;
    }

private:
    const named_source *next()
    {
        const std::lock_guard guard(mutex);
        if (failure || interruption::was_asked_for() || position == plan.to_run.size())
            return nullptr;
        return &plan.to_run.at(position++);
    }

    void work()
    {
        while (const named_source *source = next()) {
            try {
                run_one(*source);
            } catch (...) {
                const std::lock_guard guard(mutex);
                if (!failure)
                    failure = std::current_exception();
            }
        }
    }

    void run_one(const named_source &named)
    {
        source_request source;
        source_outcome outcome;
        try {
            source = request_for(request, named);
            outcome = run_source(source, plan.facts, observer, [this] { preparation.prepare(); });
        } catch (const host_error &error) {
            const bool is_unreadable = error.kind() == error_kind::not_found;
            if (is_unreadable)
                preparation.prepare();
            if (!preparation.is_done() || plan.all.size() == 1)
                throw;
            source = unreadable_request(named);
            outcome = failed_outcome(named, error);
            if (error.kind() != error_kind::refused) // somebody else works on it
                write_failed_record(source, outcome);
        }
        observer.source_finished(source, outcome);
        const std::lock_guard guard(mutex);
        tally.add(outcome.record);
    }

    source_request unreadable_request(const named_source &named) const
    {
        source_request source;
        source.source.path = named.path;
        source.source.kind = named.kind;
        source.number = named.number;
        source.name = named.name;
        source.case_directory = request.directory;
        source.options = request.options;
        return source;
    }

    static source_outcome failed_outcome(const named_source &named, const host_error &error)
    {
        source_outcome outcome;
        outcome.record.number = named.number;
        outcome.record.name = named.name;
        outcome.record.path = named.path;
        outcome.record.type = named.kind ? QString(named.kind->name) : QString();
        outcome.record.status = source_status::failed;
        outcome.record.exit_code = int(error.kind() == error_kind::not_found ? outcome_code::no_evidence
                                                                             : outcome_code::partial);
        outcome.record.started = utc_now();
        outcome.record.finished = outcome.record.started;
        outcome.record.messages = {error.message()};
        outcome.messages = {{run_message::weight::error, error.message()}};
        return outcome;
    }

    void write_failed_record(const source_request &source, source_outcome &outcome) const
    {
        try {
            make_folder(source.layout().folder());
            const file_lock lock(source.layout().lock());
            write_source_record(source, plan.facts, outcome.record);
        } catch (const host_error &error) {
            outcome.messages.append({run_message::weight::error, error.message()});
        }
    }

    const case_request &request;
    const case_plan &plan;
    shared_observer observer;
    case_preparation preparation;
    std::mutex mutex;
    qsizetype position = 0;
    case_tally tally;
    std::exception_ptr failure; ///< before anything was touched, or with one source alone
};

/** Brings the list of sources in the records of the others up to date, and changes nothing else of theirs. */
void renew_list(const case_layout &layout, const QJsonObject &facts)
{
    for (const int number : recorded_sources(layout)) {
        const file_lock lock(layout.source(number).lock());
        QJsonObject members = read_json_file(layout.source(number).record());
        if (members.value("case_sources"_L1) == facts.value("case_sources"_L1))
            continue;
        members.insert("case_sources"_L1, facts.value("case_sources"_L1));
        write_json_file(layout.source(number).record(), members);
    }
}

/** The kind of error that an outcome of sources is; none of one that is done. */
std::optional<error_kind> kind_of(outcome_code code)
{
    switch (code) {
    case outcome_code::done:
        return {};
    case outcome_code::failed:
        return error_kind::io;
    case outcome_code::no_evidence:
        return error_kind::not_found;
    case outcome_code::partial:
        return error_kind::incomplete;
    case outcome_code::evidence_changed:
        return error_kind::evidence_changed;
    case outcome_code::interrupted:
        break;
    }
    return error_kind::interrupted;
}

} // namespace

case_tally run_case(const case_request &request, run_observer &observer)
{
    const case_plan plan = plan_case(request);
    const case_layout layout(request.directory);
    if (plan.to_run.isEmpty()) { // a case that is continued and was done
        const file_lock lock(layout.lock());
        return collect_case(layout);
    }

    const interruption ctrl_c;
    source_queue queue(request, plan, observer);
    case_tally of_this_run = queue.run();
    if (request.only)
        return of_this_run;
    if (request.earlier == case_request::earlier_run::added_to)
        renew_list(layout, plan.facts.members);
    try {
        case_tally tally = collect_case(layout);
        tally.is_interrupted = interruption::was_asked_for();
        return tally;
    } catch (const host_error &error) {
        // What became of the sources counts more than their list.
        throw host_error(kind_of(of_this_run.code()).value_or(error.kind()), error.message());
    }
}
