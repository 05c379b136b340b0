// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_CONSOLE_H
#define HOST_CLI_CONSOLE_H

#include <QString>
#include <QStringList>

struct console_options
{
    bool quiet = false;       ///< nothing but data, warnings and errors
    bool no_color = false;    ///< asked for; a stream that is no terminal has no colours anyway
    bool no_progress = false; ///< other lines come on standard error all the time
};

/** The program's two streams: data and results on standard output, everything about the run on standard error. */
class console
{
public:
    explicit console(const console_options &options);

    /** Lines for standard output, which may hold only what terminal_text() lets through. */
    void print(const QStringList &lines) const;
    /** The same, left out when the examiner asked for quiet. */
    void print_unless_quiet(const QStringList &lines) const;
    /** A line of a heading on standard output. */
    QString bold(const QString &text) const;

    /** Messages on standard error; any text may be in them. */
    void error(const QString &message) const;
    void warning(const QString &message) const;
    void note(const QString &message) const;

    /** A line of the plug-in's log, on standard error. */
    void log_line(const QString &line) const;

    /** Replaces the lines that tell how far the run is; only on a terminal, and cut to its width. */
    void show_progress(const QStringList &lines) const;
    void clear_progress() const;

    /** False when something could not be written to standard output, a full disk for instance. */
    bool finish() const;

private:
    void message(const char *color, QLatin1StringView kind, const QString &text) const;

    bool is_quiet;
    bool has_progress;
    bool has_output_colors;
    bool has_error_colors;
    mutable qsizetype progress_lines = 0;
};

#endif
