// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/progress_lines.h"

#include "host/cli/terminal_size.h"

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *clear_line = "\r\033[K";
constexpr const char *line_up = "\033[A";
constexpr qsizetype usual_columns = 80;

} // namespace

progress_lines::progress_lines(bool wanted)
    : is_wanted(wanted)
{
}

void progress_lines::show(const terminal_texts &lines)
{
    if (!is_wanted)
        return;
    clear();
    const qsizetype width = terminal_columns(STDERR_FILENO).value_or(usual_columns) - 1; // the last one would wrap
    QStringList cut;
    for (const terminal_text &line : lines)
        cut.append(line.first_columns(width).to_string());
    std::fputs(clear_line, stderr);
    std::fputs(cut.join(u'\n').toUtf8().constData(), stderr);
    shown = cut.size();
}

void progress_lines::clear()
{
    for (; shown > 0; --shown) {
        std::fputs(clear_line, stderr);
        if (shown > 1)
            std::fputs(line_up, stderr);
    }
}
