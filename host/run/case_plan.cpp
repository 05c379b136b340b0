// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_plan.h"

#include "host/case/completeness.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"
#include "host/text/json_member.h"

#include <QFile>
#include <QJsonArray>
#include <QSet>

#include <algorithm>

#include <sqlite3.h>

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
    for (const QLatin1StringView other :
         {"is_verbose"_L1, "plugin_file"_L1, "memory_limit"_L1, "timeout"_L1, "max_database"_L1})
        options.remove(other);
    return options;
}

QString plugin_hash(const QString &file)
{
    QFile plugin(file);
    if (!plugin.open(QIODevice::ReadOnly))
        return {};
    return sha256::of(plugin.readAll());
}

QJsonObject facts_of(const case_request &request, const QList<named_source> &all)
{
    const QString plugin = request.options.plugin_file;
    return {
        {u"format"_s, u"bluetooth-logs source"_s},
        {u"version"_s, 1},
        {u"tool"_s, QJsonObject{{u"version"_s, QStringLiteral(BLUETOOTH_LOGS_VERSION)},
                                {u"qt"_s, QString::fromLatin1(qVersion())},
                                {u"sqlite"_s, QString::fromLatin1(sqlite3_libversion())},
                                {u"plugin"_s,
                                 QJsonObject{{u"path"_s, plugin}, {u"sha256"_s, text_or_null(plugin_hash(plugin))}}}}},
        {u"options"_s, QJsonArray::fromStringList(request.arguments)},
        {u"result_options"_s, result_options(request)},
        {u"examiner"_s, text_or_null(request.examiner)},
        {u"case_number"_s, text_or_null(request.case_number)},
        {u"case_sources"_s, sources_identity(all)},
    };
}

/** The sources that the case holds already. */
QList<named_source> recorded(const case_layout &layout)
{
    QList<named_source> sources;
    for (const int number : recorded_sources(layout)) {
        const source_record record = read_source_record(layout, number).source;
        named_source source;
        source.number = record.number;
        source.name = record.name;
        source.path = record.path;
        source.place = u"source "_s + QString::number(number) + u" of the case"_s;
        sources.append(source);
    }
    return sources;
}

/** --add: the new ones get the highest number plus one, and so on. */
void add_to_case(const case_request &request, case_plan &plan)
{
    const case_layout layout(request.directory);
    plan.all = recorded(layout);
    if (plan.all.isEmpty())
        refuse(u"there is no case to add to: "_s + request.directory);
    int highest = 0;
    for (const named_source &source : std::as_const(plan.all))
        highest = qMax(highest, source.number);
    for (named_source source : request.sources) {
        if (source.number == -1)
            source.number = ++highest;
        plan.to_run.append(source);
    }
    plan.all += plan.to_run;
    number_sources(plan.all);
    refuse_overlaps(plan.all, path_comparison::places);
}

/** --resume: everything that is neither done nor partial. */
void continue_case(const case_request &request, case_plan &plan)
{
    const case_layout layout(request.directory);
    const QString list_hash = sources_identity(plan.all).value("sha256"_L1).toString();
    const QJsonObject options = result_options(request);
    for (const named_source &source : std::as_const(plan.all)) {
        if (!path_exists(layout.source(source.number).record())) {
            plan.to_run.append(source);
            continue;
        }
        const kept_record record = read_source_record(layout, source.number);
        if (record.members.value("case_sources"_L1).toObject().value("sha256"_L1) != list_hash)
            refuse(u"the sources are not those of the first run, by the record of source "_s
                   + QString::number(source.number) + u": --resume takes the same ones"_s);
        const QJsonObject earlier = record.members.value("result_options"_L1).toObject();
        QStringList different;
        for (auto option = options.begin(); option != options.end(); ++option) {
            if (earlier.value(option.key()) != option.value())
                different.append(option.key());
        }
        if (!different.isEmpty())
            refuse(u"these options are not those of the first run: "_s + different.join(u", "_s)
                   + u": --resume takes the same ones, --force starts anew"_s);
        const source_status status = record.source.status;
        if (status != source_status::done && status != source_status::partial)
            plan.to_run.append(source);
    }
}

void refuse_earlier_run(const case_request &request, const case_plan &plan)
{
    const case_layout layout(request.directory);
    QList<int> numbers;
    if (request.only) {
        numbers.append(*request.only);
    } else {
        for (const named_source &source : plan.to_run)
            numbers.append(source.number);
        if (request.earlier == case_request::earlier_run::refused)
            numbers += layout.source_numbers();
    }
    QSet<int> to_run;
    for (const named_source &source : plan.to_run)
        to_run.insert(source.number);
    for (const int number : std::as_const(numbers)) {
        // What a run that did not come to its end left may be made anew.
        if (!layout.source(number).holds_a_run() || (to_run.contains(number) && was_left_incomplete(layout, number)))
            continue;
        if (request.earlier == case_request::earlier_run::added_to)
            refuse(u"the case already holds a result, "_s + layout.source(number).folder());
        refuse(u"the case already holds a result, "_s + layout.source(number).folder()
               + u": --resume runs what is not done, --force removes it first"_s);
    }
}

/** All of them must be usable, or some of several must be readable. */
void check_sources(const case_request &request, const case_plan &plan)
{
    qsizetype readable = 0;
    std::optional<host_error> first;
    for (const named_source &source : plan.to_run) {
        try {
            check_places(request_for(request, source));
            ++readable;
        } catch (const host_error &error) {
            if (error.kind() != error_kind::not_found)
                throw;
            if (!first)
                first = error;
        }
    }
    const bool is_one_of_many = request.only || plan.all.size() > plan.to_run.size();
    if (first && readable == 0 && !is_one_of_many)
        throw *first;
}

} // namespace

source_request request_for(const case_request &request, const named_source &named)
{
    source_request source;
    source.source = find_source(named.path, named.kind, request.options.tables, request.options.follow_links);
    source.number = named.number;
    source.name = named.name;
    source.case_directory = request.directory;
    source.options = request.options;
    if (source.source.kind == &ios_uid_kind && request.options.engine_type != 0)
        refuse(u"iOS sources are extracted with the engine KALDO_DESK only"_s);
    return source;
}

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

case_plan plan_case(const case_request &request)
{
    using earlier_run = case_request::earlier_run;
    case_plan plan;
    if (request.earlier == earlier_run::added_to) {
        add_to_case(request, plan);
    } else {
        plan.all = request.sources;
        number_sources(plan.all);
        // One of a million sources must not look at all the others: so would each of them.
        refuse_overlaps(plan.all, request.only ? path_comparison::texts : path_comparison::places);
        if (request.only) {
            for (const named_source &source : std::as_const(plan.all)) {
                if (source.number == *request.only)
                    plan.to_run.append(source);
            }
            if (plan.to_run.isEmpty())
                refuse(u"no source has the number "_s + QString::number(*request.only) + u" of --only"_s);
        } else if (request.earlier == earlier_run::continued) {
            continue_case(request, plan);
        } else {
            plan.to_run = plan.all;
        }
    }
    check_sources(request, plan);
    if (request.earlier == earlier_run::refused || request.earlier == earlier_run::added_to)
        refuse_earlier_run(request, plan);
    plan.facts.members = facts_of(request, plan.all);
    return plan;
}
