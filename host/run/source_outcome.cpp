// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_outcome.h"

#include "host/source/evidence_files.h"
#include "host/source/evidence_folder.h"
#include "host/source/macos_databases.h"

#include <QFileInfo>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_failures_shown = 5;

using weight = run_message::weight;

QString rows_text(qint64 rows)
{
    return QLocale(QLocale::English).toString(rows) + (rows == 1 ? u" row"_s : u" rows"_s);
}

QString count_text(const std::optional<qint64> &count)
{
    return count ? QLocale(QLocale::English).toString(*count) : u"an unknown number"_s;
}

/** Collects what is said of one run and the worst that it means. */
class judgement
{
public:
    explicit judgement(source_outcome &result)
        : outcome(result)
    {
    }

    void say(weight importance, const QString &text)
    {
        outcome.messages.append({importance, text});
        outcome.record.messages.append(text);
    }

    /** The first one that is given counts. */
    void end_as(source_status status, outcome_code code)
    {
        if (outcome.record.exit_code)
            return;
        outcome.record.status = status;
        outcome.record.exit_code = int(code);
    }

private:
    source_outcome &outcome;
};

/** The companions that say that the main file alone is not the whole truth, and leftovers that nobody reads. */
void tell_unread_evidence(const evidence_state &evidence, judgement &verdict)
{
    const auto is_present = [&evidence](const QString &path) {
        return std::any_of(evidence.files.cbegin(), evidence.files.cend(), [&path](const evidence_file &file) {
            return file.path == path && file.state != evidence_file::presence::absent;
        });
    };
    for (const evidence_file &file : evidence.files) {
        const bool is_there = file.state != evidence_file::presence::absent;
        const bool holds_something = is_there && (!file.before || file.before->size > 0);
        if (file.path.endsWith("-wal"_L1) && holds_something) {
            if (is_present(file.path.chopped(4)))
                verdict.say(weight::warning,
                            u"this version does not read the write-ahead log "_s + file.path
                                + u": rows that are only in it are missing in the result, and rows that it changes or "
                                  "deletes stand there as they were before");
        } else if (file.path.endsWith("-journal"_L1) && holds_something) {
            verdict.say(weight::warning, u"the rollback journal "_s + file.path
                                             + u" belongs to a change that was not finished: the result has the rows "
                                               "of the database as it stands, half changed");
        } else if (file.path.endsWith(".corrupt"_L1) && is_there) {
            verdict.say(weight::note, u"the leftover of a damaged database is not read: "_s + file.path);
        }
    }
}

/** Files that are there and could not be looked at, and files that are odd. */
void tell_odd_evidence(const source_request &request, const evidence_state &evidence, judgement &verdict)
{
    bool is_any_unread = false;
    for (const evidence_file &file : evidence.files) {
        if (file.reason.isEmpty())
            continue;
        const bool is_unread = file.state == evidence_file::presence::unreadable
                               || file.state == evidence_file::presence::refused;
        is_any_unread = is_any_unread || is_unread;
        verdict.say(is_unread ? weight::error : weight::warning,
                    file.path + (is_unread ? u" was not read: "_s : u": "_s) + file.reason);
    }
    if (!unread_tables(request, evidence).isEmpty() && is_nothing_readable(request, evidence))
        verdict.end_as(source_status::failed, outcome_code::no_evidence);
    else if (is_any_unread)
        verdict.end_as(source_status::partial, outcome_code::partial);
    if (request.source.kind != &macos_kind)
        return;
    for (const macos_database *database : macos_databases) {
        const QString path = path_in_source(*database);
        const bool is_absent = std::any_of(evidence.files.cbegin(), evidence.files.cend(),
                                           [&path](const evidence_file &file) {
                                               return file.path == path
                                                      && file.state == evidence_file::presence::absent;
                                           });
        if (is_absent && request.options.tables.contains(database->result_table))
            verdict.say(weight::note, u"the source holds no database for the table "_s + database->result_table);
    }
}

/** How the worker process ended, if it did not end well. */
void tell_end(const source_request &request, const worker_report &report, bool is_interrupted, judgement &verdict)
{
    const QString phase = report.is_loaded ? QString() : u" while the plug-in was loaded"_s;
    if (report.end.is_timed_out) {
        verdict.say(weight::error, u"timed out"_s + phase + u": the run took longer than the "_s
                                       + QString::number(request.options.timeout) + u" seconds of --timeout"_s);
        verdict.end_as(source_status::timed_out, outcome_code::partial);
    }
    if (report.is_out_of_memory || (report.inspected && report.inspected->log.is_out_of_memory)
        || (report.inspected && report.inspected->is_out_of_memory)) {
        verdict.say(weight::error, u"out of memory"_s + phase + u": the run needs more than the "_s
                                       + QString::number(request.options.memory_limit) + u" MiB of --memory-limit"_s);
        verdict.end_as(source_status::out_of_memory, outcome_code::partial);
    }
    for (const QString &problem : report.problems)
        verdict.say(weight::error, problem);
    if (report.end.signal != 0 && !report.end.is_timed_out && !is_interrupted) {
        verdict.say(weight::error, u"crashed"_s + phase + u": the process that runs the plug-in ended with "_s
                                       + report.end.signal_name());
        verdict.end_as(source_status::crashed, outcome_code::partial);
    }
    if (report.is_extracted || is_interrupted)
        return;
    if (report.end.signal == 0 && report.problems.isEmpty() && !report.is_out_of_memory && !report.end.is_timed_out)
        verdict.say(weight::error, u"the process that runs the plug-in ended before the extraction did, with exit "
                                   "code "_s
                                       + QString::number(report.end.exit_code));
    verdict.end_as(source_status::failed, outcome_code::partial);
}

/** What the plug-in's log says went wrong. */
void tell_failures(const source_request &request, const log_findings &log, judgement &verdict)
{
    const bool lacks_ios_columns = request.source.kind == &ios_uid_kind && request.options.suite_tables;
    qsizetype shown = 0;
    qint64 ios_rows = 0;
    for (const logged_failure &failure : log.failures) {
        if (lacks_ios_columns && failure.is_insert)
            ios_rows += failure.count;
        else if (++shown <= most_failures_shown)
            verdict.say(weight::warning,
                        failure.text
                            + (failure.count > 1 ? u" ("_s + QString::number(failure.count) + u" times)"_s
                                                 : QString()));
    }
    const qint64 more = shown - qMin(shown, most_failures_shown) + log.other_failures;
    if (more > 0)
        verdict.say(weight::warning, QString::number(more) + u" more kinds of failure are in the plug-in's log"_s);
    if (ios_rows > 0)
        verdict.say(weight::warning, rows_text(ios_rows)
                                         + u" found and not written: the suite's result tables have no columns for iOS "
                                           "rows; without --suite-tables the program adds them"_s);
    if (!log.failures.isEmpty())
        verdict.end_as(source_status::partial, outcome_code::partial);
}

/** The log must be whole: what failed is told there and nowhere else. */
void check_log(const worker_report &report, judgement &verdict)
{
    if (!report.is_extracted)
        return;
    if (!report.log_has_its_end) {
        verdict.say(weight::error, u"the plug-in's log has no line that ends it: the plug-in stopped early"_s);
        verdict.end_as(source_status::partial, outcome_code::partial);
    }
    if (!report.inspected || report.inspected->log.sha256 != report.log_sha256) {
        verdict.say(weight::error,
                    u"the plug-in's log, plugin.log, does not hold all that the plug-in wrote into it: failures may "
                    "be missing there"_s);
        verdict.end_as(source_status::partial, outcome_code::partial);
    }
}

/** Rows found, announced and stored must be the same. */
void check_rows(const source_request &request, const worker_report &report, const source_record &record,
                judgement &verdict)
{
    const QStringList unread = unread_tables(request, record.evidence);
    for (const table_rows &rows : record.rows) {
        if (unread.contains(rows.table))
            continue; // told by the name of its file
        const bool counts_evidence = request.source.kind != &ios_uid_kind;
        const bool agree = rows.announced && rows.stored && rows.announced == rows.stored
                           && (!counts_evidence || rows.found == rows.stored);
        // Why the rows found are unknown is told already; the others must agree all the same.
        const bool is_uncounted = !rows.found && !report.inspected->problems.isEmpty();
        if (agree || (is_uncounted && rows.stored && rows.announced == rows.stored))
            continue;
        const QString found = counts_evidence ? count_text(rows.found) + u" found in the evidence, "_s : QString();
        verdict.say(weight::error, u"the rows of the table "_s + rows.table + u" do not agree: "_s + found
                                       + count_text(rows.announced) + u" announced by the plug-in, "_s
                                       + count_text(rows.stored) + u" stored in the result"_s);
        verdict.end_as(source_status::partial, outcome_code::partial);
    }
}

} // namespace

void source_outcome::fail(const QString &text)
{
    messages.append({weight::error, text});
    record.messages.append(text);
    if (code() != outcome_code::done)
        return;
    record.status = source_status::partial;
    record.exit_code = int(outcome_code::partial);
}

source_outcome judge_source(const source_request &request, const source_record &record, const worker_report &report,
                            bool is_interrupted)
{
    source_outcome outcome;
    outcome.record = record;
    judgement verdict(outcome);

    const QStringList changes = report.inspected ? report.inspected->changes : QStringList();
    for (const QString &change : changes) {
        if (request.options.is_live)
            verdict.say(weight::note, u"the live evidence changed during the run: "_s + change);
        else
            verdict.say(weight::error, u"the evidence changed during the run: "_s + change);
    }
    if (!changes.isEmpty() && !request.options.is_live)
        verdict.end_as(source_status::evidence_changed, outcome_code::evidence_changed);
    if (is_interrupted) {
        verdict.say(weight::error, u"interrupted: the result is incomplete"_s);
        verdict.end_as(source_status::interrupted, outcome_code::interrupted);
    }
    tell_end(request, report, is_interrupted, verdict);

    if (report.inspected) {
        outcome.record.evidence = report.inspected->evidence;
        outcome.record.rows = report.inspected->rows;
        outcome.record.wal = report.inspected->wal;
        outcome.record.result_sha256 = report.inspected->result_sha256;
    } else if (report.looked) {
        outcome.record.evidence = *report.looked;
    }
    for (table_rows &rows : outcome.record.rows) {
        const auto announced = report.announced.constFind(rows.table);
        if (announced != report.announced.cend())
            rows.announced = *announced;
        else if (request.source.kind == &winos_kind && report.is_extracted)
            rows.announced = 0; // it has no tables to announce
    }
    if (!outcome.record.result_sha256.isEmpty())
        outcome.record.result_path = request.layout().relative_to_case(request.layout().result_database());

    tell_odd_evidence(request, outcome.record.evidence, verdict);
    tell_unread_evidence(outcome.record.evidence, verdict);
    const auto is_empty = [](const table_rows &rows) { return rows.announced == 0 && rows.stored == 0; };
    if (request.source.kind == &ios_uid_kind && report.is_extracted && report.inspected
        && report.inspected->log.failures.isEmpty() && !outcome.record.rows.isEmpty()
        && std::all_of(outcome.record.rows.cbegin(), outcome.record.rows.cend(), is_empty))
        verdict.say(weight::note, u"no line of the log tells of a Bluetooth device"_s);
    if (request.source.kind == &winos_kind)
        verdict.say(weight::note, u"this version extracts nothing from Windows sources"_s);
    if (!report.inspected) {
        verdict.say(weight::error, u"the evidence could not be looked at again after the run"_s);
        verdict.end_as(source_status::failed, outcome_code::partial);
    } else {
        for (const QString &warning : report.inspected->warnings)
            verdict.say(weight::warning, warning);
        tell_failures(request, report.inspected->log, verdict);
        for (const QString &problem : report.inspected->problems) {
            verdict.say(weight::error, problem);
            verdict.end_as(source_status::partial, outcome_code::partial);
        }
        if (!is_interrupted) {
            check_log(report, verdict);
            check_rows(request, report, outcome.record, verdict);
        }
    }
    verdict.end_as(source_status::done, outcome_code::done);
    return outcome;
}

QList<run_message> messages_before_run(const source_request &request)
{
    QList<run_message> messages;
    QStringList places{request.source.kind == &macos_kind ? listed_folder(request.source) : request.source.path};
    for (const QString &path : evidence_paths(request.source))
        places.append(request.source.root + path);
    const bool changes_times = std::any_of(places.cbegin(), places.cend(), [](const QString &place) {
        return QFileInfo::exists(place) && reading_changes_access_time(place);
    });
    if (changes_times)
        messages.append({weight::warning,
                         u"reading will change access times of the evidence, since only its owner and root may keep "
                         "them: run as one of these, or mount the source read-only (mount -o ro) or without access "
                         "times (mount -o noatime)"_s});
    if (request.source.kind == &ios_uid_kind && !request.options.suite_tables)
        messages.append({weight::note,
                         u"the result tables get the columns that rows of iOS sources fill; --suite-tables leaves them "
                         "as the suite makes them"_s});
    return messages;
}
