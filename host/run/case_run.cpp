// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_run.h"

#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/files/utc_time.h"
#include "host/run/case_plan.h"
#include "host/run/case_preparation.h"
#include "host/run/interruption.h"
#include "host/run/shared_observer.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/** The sources that wait for their turn, and what became of the others. */
class source_queue
{
public:
    source_queue(const case_request &asked, const case_plan &planned, run_observer &watching)
        : request(asked)
        , plan(planned)
        , observer(watching)
        , preparation(asked, planned, watching)
    {
    }

    case_tally run()
    {
        std::vector<std::thread> workers;
        const qsizetype jobs = std::clamp<qsizetype>(request.jobs, 1, plan.to_run.size());
        try {
            for (qsizetype i = 1; i < jobs; ++i)
                workers.emplace_back([this] { work(); });
        } catch (const std::system_error &) {
            // The system allows no more threads: those that there are do the work.
        }
        work();
        for (std::thread &worker : workers)
            worker.join();
        if (failure)
            std::rethrow_exception(failure);
        observer.case_finished();
        return tally;
    }

private:
    const planned_source *next()
    {
        const std::lock_guard guard(mutex);
        if (failure || interruption::was_asked_for() || position == plan.to_run.size())
            return nullptr;
        return &plan.to_run.at(position++);
    }

    void work()
    {
        while (const planned_source *source = next()) {
            try {
                run_one(*source);
            } catch (...) {
                const std::lock_guard guard(mutex);
                if (!failure)
                    failure = std::current_exception();
            }
        }
    }

    void run_one(const planned_source &source)
    {
        source_record record;
        try {
            if (source.problem) {
                preparation.prepare();
                throw host_error(*source.problem);
            }
            record = run_source(source.request, plan.facts, observer, [this] { preparation.prepare(); });
        } catch (const host_error &error) {
            if (source.request.source.is_taken_out && plan.all.size() == 1
                && (error.kind() == error_kind::not_found || error.kind() == error_kind::refused))
                preparation.undo(source.request.number);
            if (!preparation.is_done() || plan.all.size() == 1)
                throw;
            record = failed_record(source.request, error);
            // Where it is refused and locked, somebody else works on it.
            if (error.kind() != error_kind::refused || !file_lock::is_held(source.request.layout().lock()))
                write_failed_record(source.request, record);
        }
        observer.source_finished(source.request, record);
        const std::lock_guard guard(mutex);
        tally.add(record);
    }

    static source_record failed_record(const source_request &source, const host_error &error)
    {
        source_record record;
        record.number = source.number;
        record.name = source.name;
        record.path = source.source.path;
        record.type = source.source.recorded_kind() ? QString(source.source.recorded_kind()->name) : QString();
        record.status = source_status::failed;
        record.exit_code = int(error.kind() == error_kind::not_found ? outcome_code::no_evidence
                                                                     : outcome_code::partial);
        record.started = utc_now();
        record.finished = record.started;
        record.add_error(error.message());
        return record;
    }

    void write_failed_record(const source_request &source, source_record &record) const
    {
        try {
            make_folder(source.layout().folder());
            const file_lock lock(source.layout().lock());
            record.files = list_files_of_source(case_layout(source.case_directory), source.number);
            write_source_record(source, plan.facts, record);
        } catch (const host_error &error) {
            record.add_error(error.message());
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
        if (tally.code() == outcome_code::done && of_this_run.code() != outcome_code::done)
            ++tally.codes[outcome_code::partial]; // a record on the disk says less than what was printed
        return tally;
    } catch (const host_error &error) {
        // What became of the sources counts more than their list.
        throw host_error(kind_of(of_this_run.code()).value_or(error.kind()), error.message());
    }
}
