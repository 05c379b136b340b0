// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/case_preparation.h"

#include "host/files/open_without_links.h"
#include "host/files/paths.h"

#include <QSet>

#include <algorithm>

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

} // namespace

case_preparation::case_preparation(const case_request &case_to_prepare, const case_plan &plan_of_case,
                                   run_observer &run)
    : request(case_to_prepare)
    , plan(plan_of_case)
    , observer(run)
{
}

void case_preparation::prepare()
{
    const std::lock_guard guard(mutex);
    if (failure)
        std::rethrow_exception(failure);
    if (is_prepared)
        return;
    try {
        make_room();
        is_prepared = true;
    } catch (const host_error &) {
        failure = std::current_exception();
        throw;
    }
}

bool case_preparation::is_done() const
{
    const std::lock_guard guard(mutex);
    return is_prepared;
}

void case_preparation::undo(int number)
{
    const std::lock_guard guard(mutex);
    if (!is_prepared)
        return;
    const case_layout layout(request.directory);
    if (!file_lock::is_held(layout.source(number).lock()))
        folder_entry(layout.source(number).lock()).remove();
    folder_entry(layout.source(number).folder()).remove_folder();
    if (was_there)
        return;
    folder_entry(layout.lock()).remove();
    if (plan.all.size() == 1)
        folder_entry(layout.source_list()).remove();
    folder_entry(request.directory).remove_folder();
}

void case_preparation::make_room()
{
    was_there = path_exists(request.directory);
    make_folder(request.directory);
    const case_layout layout(request.directory);
    if (!request.only)
        lock = std::make_unique<file_lock>(layout.lock());
    check_plan(request, plan); // another run may have been here meanwhile
    remove_earlier_runs(layout);
    const bool is_chosen_from = std::any_of(plan.all.cbegin(), plan.all.cend(), [](const named_source &source) {
        return source.volume > 0 || !source.member.isEmpty();
    });
    if (!request.only && (plan.all.size() > 1 || is_chosen_from))
        write_source_list(layout.source_list(), plan.all);
}

void case_preparation::remove_earlier_runs(const case_layout &layout) const
{
    const bool is_forced = request.earlier == case_request::earlier_run::removed;
    const bool is_continued = request.earlier == case_request::earlier_run::continued;
    QList<int> numbers;
    for (const planned_source &source : plan.to_run)
        numbers.append(source.request.number);
    if (is_forced && !request.only)
        numbers += layout.source_numbers();
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    for (const int number : std::as_const(numbers)) {
        if (path_exists(layout.source(number).lock()))
            const file_lock nobody_works_here(layout.source(number).lock());
    }
    QStringList kept;
    for (const int number : std::as_const(numbers)) {
        if (is_forced || is_continued || read_earlier_source(layout, number).was_left_incomplete())
            kept += layout.source(number).remove_run();
    }
    if (!kept.isEmpty())
        observer.kept(kept);
    for (const planned_source &source : plan.to_run)
        refuse_foreign_temporaries(source.request.layout());
    if (is_forced && !request.only) {
        remove_file(layout.manifest());
        remove_file(layout.manifest_hash());
        remove_file(layout.source_list());
        remove_other_folders(layout);
    }
}

/** The folders of sources that the case has no longer, if nothing else is in them. */
void case_preparation::remove_other_folders(const case_layout &layout) const
{
    QSet<int> ours;
    for (const named_source &source : plan.all)
        ours.insert(source.number);
    for (const int number : layout.source_numbers()) {
        if (ours.contains(number))
            continue;
        folder_entry(layout.source(number).lock()).remove();
        folder_entry(layout.source(number).folder()).remove_folder();
    }
}
