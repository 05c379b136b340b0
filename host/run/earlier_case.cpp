// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/earlier_case.h"

#include "host/case/manifest.h"
#include "host/files/paths.h"

using namespace Qt::StringLiterals;

earlier_source read_earlier_source(const case_layout &layout, int number)
{
    const source_layout files = layout.source(number);
    earlier_source source;
    source.number = number;
    source.holds_a_run = files.holds_a_run();
    source.has_record = path_exists(files.record());
    if (!source.has_record)
        return source;
    try {
        const kept_record record = read_source_record(layout, number);
        source.name = record.source.name;
        source.path = record.source.path;
        source.type = record.source.type;
        source.status = record.source.status;
        source.version = record.version();
        source.list_sha256 = record.members["case_sources"_L1]["sha256"_L1].toString();
        source.result_options = record.members["result_options"_L1].toObject();
    } catch (const host_error &error) {
        source.problem = error;
    }
    return source;
}

QList<earlier_source> read_earlier_sources(const case_layout &layout)
{
    QList<earlier_source> sources;
    for (const int number : layout.source_numbers())
        sources.append(read_earlier_source(layout, number));
    return sources;
}
