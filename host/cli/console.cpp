// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/console.h"

#include "host/cli/terminal_size.h"
#include "host/text/json_text.h"

#include <QJsonDocument>

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void write_line(FILE *stream, QByteArray line)
{
    line += '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stream);
}

void write_line(FILE *stream, const terminal_text &line)
{
    write_line(stream, line.to_string().toUtf8());
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
    , has_events(options.has_events)
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
    printed_error = true;
    message(terminal_style::error, "error"_L1, text);
}

void console::warning(const terminal_text &text)
{
    message(terminal_style::warning, "warning"_L1, text);
}

void console::note(const terminal_text &text)
{
    if (!is_quiet)
        message(terminal_style::bold, "note"_L1, text);
}

void console::event(const QJsonObject &event)
{
    QByteArray line;
    append_escaped_json(line, QJsonDocument(event).toJson(QJsonDocument::Compact));
    write_line(stderr, line);
}

void console::log_line(const terminal_text &line)
{
    write_line(stderr, line);
}

void console::message(terminal_style style, QLatin1StringView kind, const terminal_text &text)
{
    run_progress.clear();
    if (has_events)
        return event({{u"event"_s, u"message"_s}, {u"weight"_s, QString(kind)}, {u"text"_s, text.to_string()}});
    const terminal_text head = kind + u":"_s;
    write_line(stderr, (has_error_colors ? head.styled(style) : head) + u" "_s + text);
}

bool console::finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}
