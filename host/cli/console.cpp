// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/console.h"

#include "host/files/terminal_text.h"

#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *bold_color = "\033[1m";
constexpr const char *error_color = "\033[1;31m";
constexpr const char *warning_color = "\033[1;33m";
constexpr const char *no_color = "\033[0m";
constexpr const char *clear_line = "\r\033[K";
constexpr const char *line_up = "\033[A";
constexpr qsizetype usual_columns = 80;

void write(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

bool is_terminal(FILE *stream)
{
    return ::isatty(::fileno(stream)) == 1;
}

QString colored(const char *color, const QString &text)
{
    return QLatin1StringView(color) + text + QLatin1StringView(no_color);
}

qsizetype terminal_columns()
{
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual_columns;
}

/** As much of a text as fits. */
QString cut_to_width(const QString &text, qsizetype width)
{
    QString cut = text;
    while (terminal_width(cut) > width)
        cut.chop(1);
    return cut;
}

/** https://no-color.org: set and not empty. */
bool environment_allows_colors()
{
    return qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
}

} // namespace

console::console(const console_options &options)
    : is_quiet(options.quiet)
    , has_progress(!options.quiet && !options.no_progress && is_terminal(stderr) && qgetenv("TERM") != "dumb")
{
    const bool colors = !options.no_color && environment_allows_colors();
    has_output_colors = colors && is_terminal(stdout);
    has_error_colors = colors && is_terminal(stderr);
}

void console::print(const QStringList &lines) const
{
    for (const QString &line : lines)
        write(stdout, line + u'\n');
}

void console::print_unless_quiet(const QStringList &lines) const
{
    if (!is_quiet)
        print(lines);
}

QString console::bold(const QString &text) const
{
    return has_output_colors ? colored(bold_color, text) : text;
}

void console::error(const QString &text) const
{
    message(error_color, "error"_L1, text);
}

void console::warning(const QString &text) const
{
    message(warning_color, "warning"_L1, text);
}

void console::note(const QString &text) const
{
    if (!is_quiet)
        message(bold_color, "note"_L1, text);
}

void console::log_line(const QString &line) const
{
    write(stderr, terminal_text(line) + u'\n');
}

void console::message(const char *color, QLatin1StringView kind, const QString &text) const
{
    clear_progress();
    const QString plain = kind + u':';
    const QString label = has_error_colors ? colored(color, plain) : plain;
    write(stderr, label + u' ' + terminal_text(text) + u'\n');
}

void console::show_progress(const QStringList &lines) const
{
    if (!has_progress)
        return;
    clear_progress();
    const qsizetype width = terminal_columns() - 1;
    QStringList shown;
    for (const QString &line : lines)
        shown.append(cut_to_width(terminal_text(line), width));
    write(stderr, shown.join(u'\n'));
    progress_lines = shown.size();
}

void console::clear_progress() const
{
    for (; progress_lines > 1; --progress_lines)
        write(stderr, QString::fromLatin1(clear_line) + QString::fromLatin1(line_up));
    if (progress_lines == 1)
        write(stderr, QString::fromLatin1(clear_line));
    progress_lines = 0;
}

bool console::finish() const
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}
