// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/collect_command.h"

#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_numbers_shown = 20;

QString sources_text(int count)
{
    return QString::number(count) + (count == 1 ? u" source "_s : u" sources "_s);
}

QString numbers_text(const QList<int> &numbers)
{
    QStringList texts;
    for (const int number : numbers.first(qMin(numbers.size(), most_numbers_shown)))
        texts.append(QString::number(number));
    return texts.join(u", "_s) + (numbers.size() > most_numbers_shown ? u", …"_s : QString());
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
