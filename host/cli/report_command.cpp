// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/report_command.h"

using namespace Qt::StringLiterals;

exit_code run_report(const report_options &options, console &out)
{
    const report_outcome outcome = write_report(options);
    terminal_texts lines;
    for (const QString &name : outcome.files)
        lines.append(u"Report    "_s + options.output + u'/' + name);
    out.print_unless_quiet(lines);
    for (const QString &text : outcome.notes)
        out.note(text);
    for (const QString &text : outcome.shortcomings)
        out.warning(text);
    return outcome.shortcomings.isEmpty() ? exit_code::done : exit_code::partial;
}
