// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_outcome.h"

#include "host/case/outcome_code.h"
#include "host/case/wal_counts.h"
#include "host/source/device_phrases.h"
#include "host/source/macos_databases.h"
#include "host/text/count_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_failures_shown = 5;

/** What may be found of a run, the gravest first: the first one that is found decides status and exit code. */
enum class finding {
    evidence_changed,
    interrupted,
    timed_out,
    out_of_memory,
    crashed,
    ended_early,
    gave_up,
    nothing_readable,
    evidence_gone,
    not_inspected,
    file_not_read,
    plugin_failure,
    more_failures,
    rows_without_columns,
    worker_problem,
    uncounted,
    log_without_end,
    log_not_whole,
    rows_unlike_log,
    result_not_hashed,
    rows_disagree,
    odd_file,
    rows_without_log,
    open_journal,
    lines_without_rows,
    worker_warning,
    live_change,
    no_database,
    leftover,
    no_device_lines,
    worker_note,
    windows,
    registry_read,
};

/** What a finding means for the run, and its text with its arguments %1, %2, …; an empty one is none. */
struct finding_kind
{
    finding kind;
    run_message::weight importance;
    source_status status; ///< done: the finding is none against the run
    outcome_code code;
    QLatin1StringView text;
};

using weight = run_message::weight;
using status = source_status;

// clang-format off
constexpr finding_kind finding_kinds[] = {
    {finding::evidence_changed,     weight::error,   status::evidence_changed, outcome_code::evidence_changed, "the evidence changed during the run: %1"_L1},
    {finding::interrupted,          weight::error,   status::interrupted,      outcome_code::interrupted,      "interrupted: the result is incomplete"_L1},
    {finding::timed_out,            weight::error,   status::timed_out,        outcome_code::partial,          "timed out%1: the run took longer than the %2 seconds of --timeout"_L1},
    {finding::out_of_memory,        weight::error,   status::out_of_memory,    outcome_code::partial,          "out of memory%1: the run needs more than the %2 MiB of --memory-limit"_L1},
    {finding::crashed,              weight::error,   status::crashed,          outcome_code::partial,          "crashed%1: the process that runs the plug-in ended with %2"_L1},
    {finding::ended_early,          weight::error,   status::failed,           outcome_code::partial,          "the process that runs the plug-in ended before the extraction did, with exit code %1"_L1},
    {finding::gave_up,              weight::error,   status::failed,           outcome_code::partial,          "%1"_L1},
    {finding::nothing_readable,     weight::error,   status::failed,           outcome_code::no_evidence,            ""_L1},
    {finding::evidence_gone,        weight::error,   status::failed,           outcome_code::no_evidence,            "the evidence is gone: it was there when the run was planned"_L1},
    {finding::not_inspected,        weight::error,   status::failed,           outcome_code::partial,          "the evidence could not be looked at again after the run"_L1},
    {finding::file_not_read,        weight::error,   status::partial,          outcome_code::partial,          "%1 was not read: %2"_L1},
    {finding::plugin_failure,       weight::warning, status::partial,          outcome_code::partial,          "%1%2"_L1},
    {finding::more_failures,        weight::warning, status::partial,          outcome_code::partial,          "%1 more kinds of failure are in the plug-in's log"_L1},
    {finding::rows_without_columns, weight::warning, status::partial,          outcome_code::partial,          "%1 found and not written: the suite's result tables have no columns for iOS rows; without --suite-tables the program adds them"_L1},
    {finding::worker_problem,       weight::error,   status::partial,          outcome_code::partial,          "%1"_L1},
    {finding::uncounted,            weight::error,   status::partial,          outcome_code::partial,          "%1"_L1},
    {finding::log_without_end,      weight::error,   status::partial,          outcome_code::partial,          "the plug-in's log has no line that ends it: the plug-in stopped early"_L1},
    {finding::log_not_whole,        weight::error,   status::partial,          outcome_code::partial,          "the plug-in's log, plugin.log, does not hold all that the plug-in wrote into it: failures may be missing there"_L1},
    {finding::rows_unlike_log,      weight::error,   status::partial,          outcome_code::partial,          "%1"_L1},
    {finding::result_not_hashed,    weight::error,   status::partial,          outcome_code::partial,          "the result database could not be hashed: nothing proves later that it is unchanged"_L1},
    {finding::rows_disagree,        weight::error,   status::partial,          outcome_code::partial,          "the rows of the table %1 do not agree: %2%3 announced by the plug-in, %4 stored in the result"_L1},
    {finding::odd_file,             weight::warning, status::done,             outcome_code::done,             "%1: %2"_L1},
    {finding::rows_without_log,           weight::warning, status::done,             outcome_code::done,             "%1"_L1},
    {finding::open_journal,         weight::warning, status::done,             outcome_code::done,             "the rollback journal %1 belongs to a change that was not finished: the result has the rows of the database as it stands, half changed"_L1},
    {finding::lines_without_rows,   weight::warning, status::done,             outcome_code::done,             "%1 with \"%2\" gave no row"_L1},
    {finding::worker_warning,       weight::warning, status::done,             outcome_code::done,             "%1"_L1},
    {finding::live_change,          weight::note,    status::done,             outcome_code::done,             "the live evidence changed during the run: %1"_L1},
    {finding::no_database,          weight::note,    status::done,             outcome_code::done,             "the source holds no database for the table %1"_L1},
    {finding::leftover,             weight::note,    status::done,             outcome_code::done,             "the leftover of a damaged database is not read: %1"_L1},
    {finding::no_device_lines,      weight::note,    status::done,             outcome_code::done,             "no line of the log tells of a Bluetooth device"_L1},
    {finding::worker_note,          weight::note,    status::done,             outcome_code::done,             "%1"_L1},
    {finding::windows,              weight::note,    status::done,             outcome_code::done,             "nothing of this Windows source is read: it holds no registry hive Windows/System32/config/SYSTEM that can be read"_L1},
    {finding::registry_read,        weight::note,    status::done,             outcome_code::done,             "the plug-in extracts nothing from Windows sources: the devices of its registry are in host_devices.jsonl"_L1},
};
// clang-format on

/** Each finding has its row, and an error is always one against the run. */
constexpr bool is_consistent()
{
    for (std::size_t i = 0; i < std::size(finding_kinds); ++i) {
        const finding_kind &row = finding_kinds[i];
        const bool is_against = row.status != status::done;
        if (row.kind != finding(i) || is_against != (row.code != outcome_code::done)
            || (row.importance == weight::error && !is_against))
            return false;
    }
    return std::size(finding_kinds) == std::size_t(finding::registry_read) + 1;
}
static_assert(is_consistent());

/** Puts the arguments in place of %1, %2, …; what they hold themselves is left as it is. */
QString filled(QLatin1StringView text, const QStringList &arguments)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '%'_L1)
            result += arguments.value(text[++i].toLatin1() - '1');
        else
            result += text[i];
    }
    return result;
}

/** Finds what is to be said of one run, in any order. */
class judgement
{
public:
    judgement(const source_request &source, const worker_report &worker, bool examiner_interrupted)
        : request(source)
        , report(worker)
        , is_interrupted(examiner_interrupted)
    {
    }

    /** Status, exit code and messages of the record, which has all else already. */
    void judge(source_record &record)
    {
        find_changes();
        find_end();
        find_in_container();
        find_unread_files(record.evidence);
        find_companions(record.evidence);
        find_empty_sources(record);
        if (!report.inspected)
            add(finding::not_inspected);
        else
            find_in_inspection(record);
        std::stable_sort(found.begin(), found.end(),
                         [](const auto &one, const auto &other) { return one.first < other.first; });
        record.status = source_status::done;
        record.exit_code = int(outcome_code::done);
        for (const auto &[kind, arguments] : std::as_const(found)) {
            const finding_kind &row = finding_kinds[int(kind)];
            if (record.status == source_status::done) {
                record.status = row.status;
                record.exit_code = int(row.code);
            }
            if (!row.text.isEmpty())
                record.messages.append({row.importance, filled(row.text, arguments)});
        }
    }

private:
    void add(finding kind, const QStringList &arguments = {})
    {
        found.append({kind, arguments});
    }

    void find_changes()
    {
        if (!report.inspected)
            return;
        for (const QString &change : report.inspected->changes)
            add(request.options.is_live ? finding::live_change : finding::evidence_changed, {change});
    }

    bool is_out_of_memory() const
    {
        return report.is_out_of_memory
               || (report.inspected && (report.inspected->is_out_of_memory || report.inspected->log.is_out_of_memory));
    }

    /** How the worker process ended, if it did not end well. */
    void find_end()
    {
        const QString phase = report.is_loaded ? QString() : u" while the plug-in was loaded"_s;
        const child_end &end = report.end;
        if (is_interrupted)
            add(finding::interrupted);
        if (end.is_timed_out)
            add(finding::timed_out, {phase, QString::number(request.options.timeout)});
        if (is_out_of_memory())
            add(finding::out_of_memory, {phase, QString::number(request.options.memory_limit)});
        const bool is_crashed = end.signal != 0 && !end.is_timed_out && !is_interrupted;
        if (is_crashed)
            add(finding::crashed, {phase, end.signal_name()});
        for (const QString &problem : report.problems)
            add(report.extracted ? finding::worker_problem : finding::gave_up, {problem});
        const bool is_explained = is_interrupted || is_crashed || end.is_timed_out || report.is_out_of_memory
                                  || !report.problems.isEmpty();
        if (!report.extracted && !is_explained)
            add(finding::ended_early, {QString::number(end.exit_code)});
    }

    /** What is to be known of the container that the evidence was taken out of. */
    void find_in_container()
    {
        if (!report.taken_out)
            return;
        for (const QString &error : report.taken_out->errors)
            add(finding::worker_problem, {error});
        for (const QString &warning : report.taken_out->warnings)
            add(finding::worker_warning, {warning});
    }

    /** Files that are there and could not be looked at, and files that are odd. */
    void find_unread_files(const evidence_state &evidence)
    {
        for (const evidence_file &file : evidence.files) {
            const bool is_unread = file.state == evidence_file::presence::unreadable
                                   || file.state == evidence_file::presence::refused;
            if (!file.reason.isEmpty())
                add(is_unread ? finding::file_not_read : finding::odd_file, {file.path, file.reason});
        }
        if (!evidence.files.isEmpty() && is_nothing_readable(request, evidence))
            add(unread_tables(request, evidence).isEmpty() ? finding::evidence_gone : finding::nothing_readable);
    }

    /** The companions that say that the main file alone is not the whole truth, and leftovers that nobody reads. */
    void find_companions(const evidence_state &evidence)
    {
        for (const evidence_file &file : evidence.files) {
            const bool is_there = file.state != evidence_file::presence::absent;
            const bool holds_something = is_there && (!file.before || file.before->size > 0);
            if (file.path.endsWith("-journal"_L1) && holds_something)
                add(finding::open_journal, {file.path});
            else if (file.path.endsWith(".corrupt"_L1) && is_there)
                add(finding::leftover, {file.path});
        }
    }

    /** Sources that gave nothing, and may do so. */
    void find_empty_sources(const source_record &record)
    {
        if (request.source.kind == &winos_kind)
            add(record.host_devices.isDouble() ? finding::registry_read : finding::windows);
        find_lines_without_rows(record.evidence);
        if (request.source.kind == &macos_kind) {
            for (const macos_database *database : macos_databases) {
                const evidence_file *file = record.evidence.file_named(path_in_source(*database));
                if (file && file->state == evidence_file::presence::absent
                    && request.options.tables.contains(database->result_table))
                    add(finding::no_database, {database->result_table});
            }
        }
        const auto is_empty = [](const table_rows &rows) { return rows.announced == 0 && rows.stored == 0; };
        if (request.source.kind == &ios_uid_kind && report.extracted && report.inspected
            && report.inspected->log.failures.isEmpty() && !record.rows.isEmpty()
            && std::all_of(record.rows.cbegin(), record.rows.cend(), is_empty))
            add(finding::no_device_lines);
    }

    /** Lines that speak of a device in a form that the plug-in does not read. */
    void find_lines_without_rows(const evidence_state &evidence)
    {
        const std::pair<QLatin1StringView, QLatin1StringView> phrases[] = {
            {other_devices_database.result_table, found_device_phrase},
            {paired_devices_database.result_table, active_device_phrase},
        };
        for (const auto &[table, phrase] : phrases) {
            const qint64 count = evidence.unparsed_lines.toObject().value(table).toInteger();
            if (count > 0)
                add(finding::lines_without_rows, {count_text(count) + (count == 1 ? u" line"_s : u" lines"_s), phrase});
        }
    }

    void find_in_inspection(const source_record &record)
    {
        if (const wal_counts log(record.wal); log.has_differences())
            add(finding::rows_without_log, {log.text()});
        for (const QString &warning : report.inspected->warnings)
            add(finding::worker_warning, {warning});
        for (const QString &note : report.inspected->notes)
            add(finding::worker_note, {note});
        for (const QString &problem : report.inspected->problems)
            add(finding::uncounted, {problem});
        find_failures();
        if (is_interrupted)
            return; // what is missing then is no surprise
        find_log_faults();
        for (const QString &difference : report.inspected->differences)
            add(finding::rows_unlike_log, {difference});
        if (report.extracted && record.result_sha256.isEmpty())
            add(finding::result_not_hashed);
        find_row_differences(record);
    }

    /** What the plug-in's log says went wrong. */
    void find_failures()
    {
        const log_findings &log = report.inspected->log;
        const bool lacks_ios_columns = request.source.kind == &ios_uid_kind && request.options.suite_tables;
        qsizetype shown = 0;
        qint64 ios_rows = 0;
        for (const logged_failure &failure : log.failures) {
            if (lacks_ios_columns && failure.is_insert)
                ios_rows += failure.count;
            else if (++shown <= most_failures_shown)
                add(finding::plugin_failure,
                    {failure.text,
                     failure.count > 1 ? u" ("_s + QString::number(failure.count) + u" times)"_s : QString()});
        }
        const qint64 more = shown - qMin(shown, most_failures_shown) + log.other_failures;
        if (more > 0)
            add(finding::more_failures, {QString::number(more)});
        if (ios_rows > 0)
            add(finding::rows_without_columns, {rows_text(ios_rows)});
    }

    /** The log must be whole: what failed is reported there and nowhere else. */
    void find_log_faults()
    {
        if (!report.extracted)
            return;
        if (!report.extracted->is_last)
            add(finding::log_without_end);
        if (report.inspected->log.sha256 != report.extracted->sha256)
            add(finding::log_not_whole);
    }

    /** Rows found, announced and stored must be the same. */
    void find_row_differences(const source_record &record)
    {
        const QStringList unread = unread_tables(request, record.evidence);
        for (const table_rows &rows : record.rows) {
            if (unread.contains(rows.table))
                continue; // reported by the name of its file
            const bool counts_evidence = request.source.kind != &ios_uid_kind;
            const bool agree = rows.announced && rows.stored && rows.announced == rows.stored
                               && (!counts_evidence || rows.found == rows.stored);
            // Why the rows found are unknown is reported already; the others must agree all the same.
            const bool is_uncounted = !rows.found && !report.inspected->problems.isEmpty();
            if (agree || (is_uncounted && rows.stored && rows.announced == rows.stored))
                continue;
            add(finding::rows_disagree,
                {rows.table, counts_evidence ? count_text(rows.found) + u" found in the evidence, "_s : QString(),
                 count_text(rows.announced), count_text(rows.stored)});
        }
    }

    const source_request &request;
    const worker_report &report;
    bool is_interrupted;
    QList<std::pair<finding, QStringList>> found;
};

/** The record with all that the worker reported, but not yet judged. */
source_record completed(const source_request &request, const source_record &before, const worker_report &report)
{
    source_record record = before;
    record.confinement = report.confinement;
    if (report.looked)
        record.evidence = *report.looked;
    if (!report.inspected)
        return record;
    record.evidence = report.inspected->evidence;
    record.rows = report.inspected->rows;
    record.wal = report.inspected->wal;
    record.host_devices = report.inspected->host_devices;
    record.salvaged = report.inspected->salvaged;
    record.result_sha256 = report.inspected->result_sha256;
    for (table_rows &rows : record.rows) {
        const auto announced = report.announced.constFind(rows.table);
        if (announced != report.announced.cend())
            rows.announced = *announced;
        else if (request.source.kind == &winos_kind && report.extracted)
            rows.announced = 0; // it has no tables to announce
    }
    if (!record.result_sha256.isEmpty())
        record.result_path = request.layout().relative_to_case(request.layout().result_database());
    return record;
}

} // namespace

source_record judge_source(const source_request &request, const source_record &record, const worker_report &report,
                           bool is_interrupted)
{
    source_record result = completed(request, record, report);
    judgement(request, report, is_interrupted).judge(result);
    return result;
}
