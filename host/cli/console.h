// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_CONSOLE_H
#define HOST_CLI_CONSOLE_H

#include "host/cli/progress_lines.h"
#include "host/text/terminal_text.h"

#include <QJsonObject>

#include <optional>

struct console_options
{
    bool quiet = false;       ///< nothing but data, warnings and errors
    bool no_color = false;    ///< asked for; a stream that is no terminal has no colours anyway
    bool no_progress = false; ///< verbose output already fills standard error
    bool has_events = false;  ///< standard error is JSON Lines
};

/** The program's two streams: data and results on standard output, everything about the run on standard error. */
class console
{
public:
    explicit console(const console_options &options);

    /** Lines of data and results, on standard output. */
    void print_line(const terminal_text &line);
    void print(const terminal_texts &lines);
    /** The same, left out when the examiner asked for quiet. */
    void print_unless_quiet(const terminal_texts &lines);
    /** Data for a program, as it is, on standard output. */
    void print_bytes(QByteArrayView bytes);
    /** The text as a heading on standard output. */
    terminal_text bold(const terminal_text &text) const;
    /** The columns that standard output has; none where it is no terminal. */
    std::optional<qsizetype> columns() const;

    /** Messages, on standard error. */
    void error(const terminal_text &text);
    bool has_printed_error() const
    {
        return printed_error;
    }
    void warning(const terminal_text &text);
    void note(const terminal_text &text);

    /** An object of its own line, on standard error. */
    void event(const QJsonObject &event);

    /** A line of the plug-in's log, on standard error. */
    void log_line(const terminal_text &line);

    /** Shows how far a run has come; messages clear it. */
    progress_lines &progress()
    {
        return run_progress;
    }

    /** Whether all lines reached standard output; a full disk takes none. */
    bool finish();

private:
    void message(terminal_style style, QLatin1StringView kind, const terminal_text &text);

    bool is_quiet;
    bool has_events;
    bool has_output_colors;
    bool has_error_colors;
    bool printed_error = false;
    progress_lines run_progress;
};

#endif
