// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/collect_command.h"

#include "host/case/case_sources.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_ranges_shown = 20;

QString sources_text(int count)
{
    return QString::number(count) + (count == 1 ? u" source "_s : u" sources "_s);
}

/** "1-3, 7", the first of many ranges. */
QString numbers_text(QList<int> numbers)
{
    std::sort(numbers.begin(), numbers.end());
    const QStringList ranges = ranges_of(numbers).split(u',');
    return QStringList(ranges.first(qMin(ranges.size(), most_ranges_shown))).join(u", "_s)
           + (ranges.size() > most_ranges_shown ? u", …"_s : QString());
}

} // namespace

void print_tally(const case_tally &tally, bool has_several_sources, console &out)
{
    if (has_several_sources) {
        QStringList parts;
        for (auto entry = tally.sources.begin(); entry != tally.sources.end(); ++entry)
            parts.append(sources_text(entry.value()) + status_name(entry.key()));
        out.print_unless_quiet({u"Case      "_s + parts.join(u", "_s)});
        if (!tally.not_done.isEmpty())
            out.error(u"not done: "_s + (tally.not_done.size() == 1 ? u"source "_s : u"sources "_s)
                      + numbers_text(tally.not_done));
    }
    out.print_unless_quiet({u"Manifest  SHA-256 "_s + tally.manifest_sha256});
}

exit_code run_collect(const QString &directory, console &out)
{
    const case_layout layout(directory);
    if (!path_exists(layout.directory()))
        throw host_error(error_kind::not_found, u"there is no case "_s + layout.directory());
    const file_lock lock(layout.lock());
    const case_tally tally = collect_case(layout);
    print_tally(tally, true, out);
    return exit_code_of(tally.code());
}
