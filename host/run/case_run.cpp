// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_run.h"

#include "host/files/file_lock.h"
#include "host/files/paths.h"
#include "host/run/interruption.h"
#include "host/run/source_run.h"
#include "host/source/macos_databases.h"

#include <QJsonArray>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(exit_code::usage, message);
}

/** Options that the source's kind makes no use of would only mislead. */
void check_options_fit(const extraction_options &options, const evidence_source &source)
{
    if (source.kind == &ios_uid_kind && options.engine_type != 0)
        refuse(u"iOS sources are extracted with the engine KALDO_DESK only"_s);
}

/** Nothing may ever be written below the source, and --force must not remove it. */
void check_places(const case_request &request, const source_request &source)
{
    const QStringList forbidden = request.options.is_live ? evidence_folders(source.source)
                                                          : QStringList{source.source.path};
    const source_layout layout = source.layout();
    for (const QString &place :
         {request.directory, layout.folder(), layout.result_folder(), layout.evidence_folder()}) {
        for (const QString &folder : forbidden) {
            if (is_inside(place, folder))
                refuse(u"the case lies inside the source, where nothing may be written: "_s + place);
        }
    }
    if (is_inside(source.source.path, layout.folder()))
        refuse(u"the source lies inside the case's folder for it, which is made anew: "_s + source.source.path);
}

void refuse_earlier_run(const case_request &request, const source_request &source)
{
    if (!request.force && source.layout().holds_a_run())
        refuse(u"the case already holds a result, "_s + source.layout().folder() + u": --force removes it first"_s);
}

/** Locks the case and makes room in it, once for all its sources. */
class case_preparation
{
public:
    case_preparation(const case_request &case_to_prepare, const QList<source_request> &case_sources, run_observer &run)
        : request(case_to_prepare)
        , sources(case_sources)
        , observer(run)
    {
    }

    void prepare()
    {
        if (lock)
            return;
        const case_layout layout(request.directory);
        make_folder(layout.directory());
        lock = std::make_unique<file_lock>(layout.lock());
        for (const source_request &source : sources) {
            check_places(request, source); // links may have come meanwhile
            refuse_earlier_run(request, source);
        }
        if (!request.force)
            return;
        QStringList kept;
        for (const int number : layout.source_numbers())
            kept += layout.source(number).remove_run();
        if (!kept.isEmpty())
            observer.kept(kept);
    }

private:
    const case_request &request;
    const QList<source_request> &sources;
    run_observer &observer;
    std::unique_ptr<file_lock> lock;
};

} // namespace

exit_code run_case(const case_request &request, run_observer &observer)
{
    QList<source_request> sources;
    for (const named_source &named : request.sources) {
        source_request source;
        source.source = find_source(named.path, named.kind, request.options.tables);
        source.number = named.number;
        source.name = named.name;
        source.case_directory = request.directory;
        source.options = request.options;
        check_options_fit(request.options, source.source);
        check_places(request, source);
        refuse_earlier_run(request, source);
        sources.append(source);
    }

    case_facts facts;
    facts.members = {{u"format"_s, u"bluetooth-logs source"_s},
                     {u"version"_s, 1},
                     {u"options"_s, QJsonArray::fromStringList(request.arguments)}};
    const interruption ctrl_c;
    case_preparation preparation(request, sources, observer);
    exit_code worst = exit_code::done;
    for (const source_request &source : sources) {
        const source_outcome outcome = run_source(source, facts, observer, [&preparation] { preparation.prepare(); });
        observer.source_finished(source, outcome);
        if (outcome.code() != exit_code::done)
            worst = outcome.code();
    }
    return worst;
}
