// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_plan.h"

#include "host/case/case_files.h"
#include "host/files/paths.h"
#include "host/run/provenance.h"
#include "host/run/taken_evidence.h"
#include "host/sqlite/sqlite.h"
#include "host/text/json_member.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QSet>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(error_kind::refused, message);
}

/** The options that decide what stands in the result; a run that is continued must have the same. */
QJsonObject result_options(const case_request &request)
{
    QJsonObject options = request.options.to_json();
    for (const QLatin1StringView other : {"is_confined"_L1, "is_verbose"_L1, "plugin_file"_L1, "memory_limit"_L1,
                                          "timeout"_L1, "max_database"_L1, "max_log"_L1, "skips_container_hash"_L1})
        options.remove(other);
    return options;
}

QJsonObject facts_of(const case_request &request, const QList<named_source> &all)
{
    return {
        {u"format"_s, u"bluetooth-logs source"_s},
        {u"version"_s, case_version},
        {u"tool"_s, tool_facts(request.options.plugin_file)},
        {u"system"_s, system_facts()},
        {u"working_folder"_s, working_folder()},
        {u"options"_s, QJsonArray::fromStringList(request.arguments)},
        {u"result_options"_s, result_options(request)},
        {u"examiner"_s, text_or_null(request.examiner)},
        {u"case_number"_s, text_or_null(request.case_number)},
        {u"case_sources"_s, sources_identity(all)},
    };
}

/** Records of two versions make no manifest. */
void refuse_older_record(const earlier_source &source, const QString &option)
{
    if (source.version != case_version)
        refuse(u"the record of source "_s + QString::number(source.number) + u" is of version "_s
               + QString::number(source.version) + u" of its format, and this program writes version "_s
               + QString::number(case_version) + u": "_s + option + u" cannot go on with it, --force starts anew"_s);
}

/** The sources that have a record. Throws what is wrong with one. */
QList<named_source> recorded_sources_of(const QList<earlier_source> &earlier, const QString &option)
{
    QList<named_source> recorded;
    for (const earlier_source &source : earlier) {
        if (source.problem)
            throw *source.problem;
        if (!source.has_record)
            continue;
        refuse_older_record(source, option);
        named_source known;
        known.number = source.number;
        known.name = source.name;
        known.path = source.path;
        known.kind = source_kind_named(source.type);
        known.place = u"source "_s + QString::number(source.number) + u" of the case"_s;
        recorded.append(known);
    }
    return recorded;
}

/** What was chosen in containers stands in the case's list. */
void take_choices(QList<named_source> &recorded, const QList<named_source> &listed)
{
    QHash<int, const named_source *> by_number;
    for (const named_source &known : listed)
        by_number.insert(known.number, &known);
    for (named_source &source : recorded) {
        const named_source *const known = by_number.value(source.number);
        if (known && known->path == source.path) {
            source.volume = known->volume;
            source.member = known->member;
        }
    }
}

/** --add: the new ones get the highest number plus one, and so on. */
source_choice added_sources(const case_request &request, const QList<earlier_source> &earlier,
                            const QList<named_source> &listed)
{
    source_choice choice;
    choice.all = recorded_sources_of(earlier, u"--add"_s);
    take_choices(choice.all, listed);
    if (choice.all.isEmpty())
        refuse(u"there is no case to add to: "_s + request.directory);
    int highest = 0;
    for (const named_source &source : std::as_const(choice.all))
        highest = qMax(highest, source.number);
    for (named_source source : request.sources) {
        if (source.number == -1)
            source.number = ++highest;
        choice.to_run.append(source);
    }
    choice.all += choice.to_run;
    number_sources(choice.all);
    return choice;
}

/** Whether the first run had these sources, by all that it left of them. */
bool are_of_the_first_run(const QList<named_source> &sources, const QList<earlier_source> &earlier)
{
    const QString list_hash = sources_identity(sources).value("sha256"_L1).toString();
    return std::all_of(earlier.cbegin(), earlier.cend(), [&list_hash](const earlier_source &source) {
        return !source.has_record || source.list_sha256 == list_hash;
    });
}

/**
 * --resume without a source: all of the case. A source that never began stands in the case's list alone, which cases
 * that were run source by source have not.
 */
QList<named_source> sources_of_the_first_run(const case_request &request, const QList<earlier_source> &earlier,
                                             const QList<named_source> &listed)
{
    QList<named_source> recorded = recorded_sources_of(earlier, u"--resume"_s);
    if (recorded.isEmpty() && listed.isEmpty())
        refuse(u"there is no case to continue: "_s + request.directory);
    if (!listed.isEmpty() && are_of_the_first_run(listed, earlier))
        return listed;
    if (!are_of_the_first_run(recorded, earlier))
        refuse(u"no run of some sources began, and nothing in the case has their paths: name all sources again"_s);
    return recorded;
}

QList<named_source> only_source(int number, const QList<named_source> &all)
{
    for (const named_source &source : all) {
        if (source.number == number)
            return {source};
    }
    refuse(u"no source has the number "_s + QString::number(number) + u" of --only"_s);
}

/** A run is continued with the sources and the options that it began with. */
void refuse_another_run(const earlier_source &source, const QString &list_hash, const QJsonObject &options)
{
    if (source.list_sha256 != list_hash)
        refuse(u"the sources are not those of the first run, by the record of source "_s
               + QString::number(source.number) + u": --resume takes the same ones"_s);
    QStringList different;
    for (auto option = options.begin(); option != options.end(); ++option) {
        if (source.result_options.value(option.key()) != option.value())
            different.append(option.key());
    }
    if (!different.isEmpty())
        refuse(u"these options are not those of the first run: "_s + different.join(u", "_s)
               + u": --resume takes the same ones, --force starts anew"_s);
}

/** --resume: everything that is not done. */
QList<named_source> unfinished_sources(const case_request &request, const QList<named_source> &all,
                                       const QList<earlier_source> &earlier)
{
    const QString list_hash = sources_identity(all).value("sha256"_L1).toString();
    const QJsonObject options = result_options(request);
    QSet<int> done;
    for (const earlier_source &source : earlier) {
        if (source.problem)
            throw *source.problem;
        if (!source.has_record)
            continue;
        refuse_older_record(source, u"--resume"_s);
        refuse_another_run(source, list_hash, options);
        if (source.status == source_status::done)
            done.insert(source.number);
    }
    QList<named_source> rest;
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(rest),
                 [&done](const named_source &source) { return !done.contains(source.number); });
    return rest;
}

QList<earlier_source> earlier_sources(const case_request &request)
{
    const case_layout layout(request.directory);
    if (request.only) // one of a million sources must not look at all the others: so would each of them
        return {read_earlier_source(layout, *request.only)};
    if (request.earlier == case_request::earlier_run::removed)
        return {};
    return read_earlier_sources(layout);
}

/** What the case's own list says, for a run that goes on with sources that are not named again; else nothing. */
QList<named_source> listed_sources(const case_request &request)
{
    const QString list = case_layout(request.directory).source_list();
    using earlier_run = case_request::earlier_run;
    const bool is_needed = request.earlier == earlier_run::added_to
                           || (request.earlier == earlier_run::continued && request.sources.isEmpty());
    return is_needed && path_exists(list) ? read_list_of_case(list) : QList<named_source>();
}

/** The places of the case and of a source of it must not meet. */
void check_places(const source_request &request)
{
    const QStringList forbidden = request.options.is_live ? evidence_folders(request.source)
                                                          : QStringList{request.source.path};
    const source_layout layout = request.layout();
    for (const QString &place :
         {request.case_directory, layout.folder(), layout.result_folder(), layout.evidence_folder()}) {
        for (const QString &folder : forbidden) {
            if (is_inside(place, folder))
                refuse(u"the case lies inside the source, where nothing may be written: "_s + place);
        }
    }
    if (is_inside(request.source.path, layout.folder()))
        refuse(u"the source lies inside the case's folder for it, which is made anew: "_s + request.source.path);
}

/** Finds the source. One that cannot be read is kept with the reason. */
planned_source plan_source(const case_request &request, const named_source &named)
{
    planned_source planned;
    source_request &source = planned.request;
    source.source.path = named.path;
    source.source.kind = named.kind;
    source.number = named.number;
    source.name = named.name;
    source.case_directory = request.directory;
    source.options = request.options;
    source.volume = named.volume;
    source.member = named.member;
    try {
        if (is_container(named.path, named.kind))
            source.source = unopened_container(named.path, named.kind, request.options.follow_links);
        else
            source.source = find_source(named.path, named.kind, request.options.tables, request.options.follow_links);
    } catch (const host_error &error) {
        if (error.kind() != error_kind::not_found)
            throw;
        planned.problem = error;
        return planned;
    }
    if (source.source.kind == &ios_uid_kind && request.options.engine_type != 0)
        refuse(u"iOS sources are extracted with the engine KALDO_DESK only"_s);
    check_places(source);
    return planned;
}

/** SQLite would open none of the databases below such a case. */
void refuse_long_path(const case_request &request, const QList<named_source> &sources)
{
    qsizetype name = 0;
    for (const named_source &source : sources)
        name = qMax(name, source_name(source.number).size());
    const qsizetype most = longest_sqlite_path - longest_database_name() - name - 2;
    const qsizetype bytes = QFile::encodeName(request.directory).size();
    if (bytes > most)
        refuse(u"the path of the case has "_s + QString::number(bytes) + u" bytes, and at most "_s
               + QString::number(most) + u" work: SQLite opens no longer paths: "_s + request.directory);
}

/** Unless the case has other sources, one of them at least must be readable. */
void require_readable_source(const case_request &request, const case_plan &plan)
{
    const bool is_one_of_many = request.only || plan.all.size() > plan.to_run.size();
    const auto is_unreadable = [](const planned_source &source) { return source.problem.has_value(); };
    if (!is_one_of_many && !plan.to_run.isEmpty()
        && std::all_of(plan.to_run.cbegin(), plan.to_run.cend(), is_unreadable))
        throw *plan.to_run.first().problem;
}

} // namespace

source_choice choose_sources(const case_request &request, const QList<earlier_source> &earlier,
                             const QList<named_source> &listed)
{
    using earlier_run = case_request::earlier_run;
    source_choice choice;
    if (request.earlier == earlier_run::added_to) {
        choice = added_sources(request, earlier, listed);
    } else {
        const bool is_named = request.earlier != earlier_run::continued || !request.sources.isEmpty();
        choice.all = is_named ? request.sources : sources_of_the_first_run(request, earlier, listed);
        number_sources(choice.all);
        choice.to_run = choice.all;
        if (request.only)
            choice.to_run = only_source(*request.only, choice.all);
        else if (request.earlier == earlier_run::continued)
            choice.to_run = unfinished_sources(request, choice.all, earlier);
    }
    return choice;
}

void refuse_earlier_results(const case_request &request, const source_choice &choice,
                            const QList<earlier_source> &earlier)
{
    using earlier_run = case_request::earlier_run;
    if (request.earlier == earlier_run::removed || request.earlier == earlier_run::continued)
        return;
    const bool is_added = request.earlier == earlier_run::added_to;
    QSet<int> to_run;
    for (const named_source &source : choice.to_run)
        to_run.insert(source.number);
    for (const earlier_source &source : earlier) {
        const bool is_to_run = to_run.contains(source.number);
        // What a run that did not come to its end left may be made anew.
        if (!source.holds_a_run || (is_added && !is_to_run) || (is_to_run && source.was_left_incomplete()))
            continue;
        const QString result = u"the case already holds a result, "_s
                               + source_layout(request.directory, source.number).folder();
        refuse(is_added ? result : result + u": --resume runs what is not done, --force removes it first"_s);
    }
}

case_plan plan_case(const case_request &request)
{
    const QList<earlier_source> earlier = earlier_sources(request);
    const source_choice choice = choose_sources(request, earlier, listed_sources(request));
    refuse_overlaps(choice.all, request.only ? path_comparison::texts : path_comparison::places);
    refuse_long_path(request, choice.to_run);
    case_plan plan;
    plan.all = choice.all;
    for (const named_source &source : choice.to_run)
        plan.to_run.append(plan_source(request, source));
    require_readable_source(request, plan);
    refuse_earlier_results(request, choice, earlier);
    plan.facts.members = facts_of(request, plan.all);
    return plan;
}

void check_plan(const case_request &request, const case_plan &plan)
{
    const QList<earlier_source> earlier = earlier_sources(request);
    const source_choice choice = choose_sources(request, earlier, listed_sources(request));
    refuse_earlier_results(request, choice, earlier);
    const bool is_same = std::equal(choice.to_run.cbegin(), choice.to_run.cend(), plan.to_run.cbegin(),
                                    plan.to_run.cend(), [](const named_source &now, const planned_source &then) {
                                        return now.number == then.request.number;
                                    });
    if (!is_same || choice.all.size() != plan.all.size())
        refuse(u"another run has worked on the case meanwhile: "_s + request.directory);
}
