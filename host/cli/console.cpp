// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/console.h"

#include "host/cli/terminal_size.h"

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void write_line(FILE *stream, const terminal_text &line)
{
    const QByteArray bytes = line.to_string().toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

bool is_terminal(int descriptor)
{
    return ::isatty(descriptor) == 1;
}

bool is_dumb_terminal()
{
    return qgetenv("TERM") == "dumb";
}

/** https://no-color.org: set and not empty. */
bool environment_allows_colors()
{
    return qEnvironmentVariableIsEmpty("NO_COLOR") && !is_dumb_terminal();
}

} // namespace

console::console(const console_options &options)
    : is_quiet(options.quiet)
    , run_progress(!options.quiet && !options.no_progress && is_terminal(STDERR_FILENO) && !is_dumb_terminal())
{
    const bool colors = !options.no_color && environment_allows_colors();
    has_output_colors = colors && is_terminal(STDOUT_FILENO);
    has_error_colors = colors && is_terminal(STDERR_FILENO);
}

void console::print_line(const terminal_text &line)
{
    write_line(stdout, line);
}

void console::print(const terminal_texts &lines)
{
    for (const terminal_text &line : lines)
        print_line(line);
}

void console::print_unless_quiet(const terminal_texts &lines)
{
    if (!is_quiet)
        print(lines);
}

void console::print_bytes(QByteArrayView bytes)
{
    std::fwrite(bytes.data(), 1, size_t(bytes.size()), stdout);
}

terminal_text console::bold(const terminal_text &text) const
{
    return has_output_colors ? text.styled(terminal_style::bold) : text;
}

std::optional<qsizetype> console::columns() const
{
    return terminal_columns(STDOUT_FILENO);
}

void console::error(const terminal_text &text)
{
    message(terminal_style::error, u"error:"_s, text);
}

void console::warning(const terminal_text &text)
{
    message(terminal_style::warning, u"warning:"_s, text);
}

void console::note(const terminal_text &text)
{
    if (!is_quiet)
        message(terminal_style::bold, u"note:"_s, text);
}

void console::log_line(const terminal_text &line)
{
    write_line(stderr, line);
}

void console::message(terminal_style style, const terminal_text &kind, const terminal_text &text)
{
    run_progress.clear();
    write_line(stderr, (has_error_colors ? kind.styled(style) : kind) + u" "_s + text);
}

bool console::finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}
