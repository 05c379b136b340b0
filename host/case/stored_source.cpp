// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/stored_source.h"

#include "host/case/case_layout.h"
#include "host/case/manifest.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/source/source_kinds.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

stored_source read_source(const case_layout &layout, int number)
{
    const source_layout files = layout.source(number);
    stored_source source;
    source.name = QFileInfo(files.folder()).fileName();
    source.result_database = files.result_database();
    source.is_locked = file_lock::is_held(files.lock());
    if (path_exists(files.record()))
        source.record = read_source_record(layout, number).source;
    return source;
}

} // namespace

QString stored_source::title() const
{
    if (!record)
        return name;
    const source_kind *kind = source_kind_named(record->type);
    return name + u"  "_s + (record->name.isEmpty() ? QString() : QString(record->name + u"  "_s))
           + (kind ? QString(kind->display_name) : record->type) + u": "_s + record->path;
}

bool stored_source::is_complete() const
{
    return !is_locked && (!record || ::is_complete(record->status));
}

QString stored_source::reservation() const
{
    if (is_locked)
        return name + u" is incomplete: a run works on it"_s;
    if (!record && name.isEmpty())
        return {};
    if (!record)
        return name + u" has no record of its run: whether its rows are all that there were is not known"_s;
    switch (record->status) {
    case source_status::done:
        return {};
    case source_status::partial:
        return name + u" is partial: its source.json says what could not be read or written"_s;
    case source_status::evidence_changed:
        return u"the evidence of "_s + name + u" changed during its run: its source.json says how"_s;
    default:
        return name + u" is incomplete: its run ended as \""_s + status_name(record->status) + u'"';
    }
}

QList<stored_source> stored_sources(const QString &place)
{
    if (QFileInfo(place).isFile()) {
        stored_source source;
        source.result_database = place;
        // One that lies in a case is known by what stands around it.
        const case_layout around(QDir::cleanPath(place + u"/../../../.."_s));
        for (const int number : around.source_numbers()) {
            if (around.source(number).result_database() == place)
                return {read_source(around, number)};
        }
        return {source};
    }
    const case_layout layout(place);
    QList<stored_source> sources;
    for (const int number : layout.source_numbers())
        sources.append(read_source(layout, number));
    if (sources.isEmpty())
        throw host_error(error_kind::not_found,
                         u"there is no case and no result database at "_s + place
                             + (QFileInfo::exists(place) ? u": a case holds a folder Source1"_s : QString()));
    return sources;
}
