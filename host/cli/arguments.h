// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_ARGUMENTS_H
#define HOST_CLI_ARGUMENTS_H

#include <QString>
#include <QStringList>

#include <CLI/CLI.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/** A command line that shows what an argument is good for. */
struct example
{
    std::string_view line;         ///< "bluetooth-logs show case"; empty: none
    std::string_view meaning = {}; ///< may be empty
};

/**
 * All that is said of an argument; what it does is given to the function that adds it. Names are as CLI11 has them,
 * "-i,--input" or "CASE"; in messages an argument has the last one of them. Whatever is wrong with a value, host_error
 * (refused) says it, and that comes through CLI::App::parse().
 */
struct argument
{
    std::string names;
    std::string type; ///< as help shows it: "PATH"; empty for a flag
    std::string help;
    example shown = {}; ///< stands in the help of its command, with those of the other arguments

    QString name() const;
};

/** Takes the value of an argument that may be given once; the value is valid UTF-8. */
CLI::Option *add_value(CLI::App &command, const argument &what, const std::function<void(const QString &)> &take);

/** Takes the values of an argument that may be given several times. */
CLI::Option *add_values(CLI::App &command, const argument &what, const std::function<void(const QStringList &)> &take);

CLI::Option *add_text(CLI::App &command, const argument &what, QString &text);

/** A path, which must not be empty; it becomes absolute. */
CLI::Option *add_path(CLI::App &command, const argument &what, QString &path);

/** The path of a case or of what the program writes: links are followed here, and nowhere later. */
CLI::Option *add_place(CLI::App &command, const argument &what, QString &path);

/** A decimal number without a sign; leading zeros mean nothing. */
CLI::Option *add_number(CLI::App &command, const argument &what, qint64 least, qint64 most, qint64 &number);
CLI::Option *add_number(CLI::App &command, const argument &what, qint64 least, qint64 most,
                        std::optional<qint64> &number);

/** The largest --max-database and --memory-limit. */
inline constexpr qint64 most_mebibytes = qint64(1) << 30;

/**
 * --memory-limit and --timeout of the processes that a command does its work in. @p work is what one of them does it
 * for, like "a source"; @p mebibytes and @p seconds (0: any) hold what is without the options.
 */
void add_process_limits(CLI::App &command, const std::string &work, qint64 &mebibytes, qint64 &seconds);

/** An argument without a value. */
CLI::Option *add_flag(CLI::App &command, const argument &what, bool &flag);

/** Adds an example to the end of a command's help. */
void add_example(CLI::App &command, const example &shown);

/** Throws unless @p word is one of @p choices; the message shows them, and the nearest. */
void require_choice(const argument &what, const QString &word, const QStringList &choices);

/** Throws host_error (refused): "--timeout: reason". */
[[noreturn]] void refuse(const argument &what, const QString &reason);

#endif
