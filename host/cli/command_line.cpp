// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/help_text.h"
#include "host/cli/nearest_word.h"
#include "host/container/archive_store.h"
#include "host/container/disk_image.h"

#include <QRegularExpression>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *exit_codes_help = R"(Exit codes:
    0  done
    1  internal error: the plug-in cannot be loaded, or something cannot be written
    2  wrong use
    3  the source is missing, unreadable or free of evidence
    4  partial: evidence was found, but a part could not be read or written
    5  the evidence changed during the run
  130  interrupted

Examples:
  bluetooth-logs sample sample
  bluetooth-logs extract -i sample/macos -o case
  bluetooth-logs show case)";

/** The command that was given; the program itself where none was. */
const CLI::App &given_command(const CLI::App &app)
{
    const std::vector<CLI::App *> commands = app.get_subcommands();
    return commands.empty() ? app : *commands.front();
}

QStringList command_names(const CLI::App &app)
{
    QStringList names;
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; }))
        names.append(QString::fromStdString(command->get_name()));
    return names;
}

/** "--force" and its like, of the command and of the program. */
QStringList option_names(const CLI::App &command)
{
    QStringList names;
    for (const CLI::App *app = &command; app; app = app->get_parent()) {
        for (const CLI::Option *option : app->get_options()) {
            for (const std::string &name : option->get_lnames())
                names.append(u"--"_s + QString::fromStdString(name));
        }
    }
    return names;
}

QString did_you_mean(const QString &word, const QStringList &words)
{
    const QString nearest = nearest_word(word, words);
    return nearest.isEmpty() ? QString() : u": did you mean "_s + nearest + u'?';
}

QString no_such_command(const CLI::App &app, const QString &word)
{
    const QStringList names = command_names(app);
    return u"there is no command "_s + word + u" beside "_s + names.first(names.size() - 1).join(u", "_s) + u" and "_s
           + names.last() + did_you_mean(word, names);
}

/**
 * The first word that is understood neither as an option nor as a value: an option, where a command says which there
 * are; else the word that stands first, for what follows a misspelt command is understood by nobody.
 */
QString stray_word(const CLI::App &app, bool has_command)
{
    QStringList words;
    for (const std::string &word : app.remaining(true))
        words.append(QString::fromStdString(word));
    if (words.isEmpty())
        return {};
    const auto option = std::find_if(words.cbegin(), words.cend(),
                                     [](const QString &word) { return word.startsWith(u'-'); });
    return has_command && option != words.cend() ? *option : words.first();
}

/** What is wrong, in words that name what was typed. */
QString reason_of(const CLI::App &app, const CLI::ParseError &error)
{
    const CLI::App &command = given_command(app);
    const bool has_command = command.get_parent();
    const QString stray = stray_word(app, has_command);
    if (stray.startsWith(u'-')) {
        const QString name = stray.section(u'=', 0, 0);
        return u"there is no option "_s + name + did_you_mean(name, option_names(command));
    }
    if (!stray.isEmpty())
        return has_command ? QString(u"it is not clear what "_s + stray + u" is for"_s) : no_such_command(app, stray);
    QString text = QString::fromUtf8(error.what());
    if (dynamic_cast<const CLI::ArgumentMismatch *>(&error))
        return text.section(u':', 0, 0) + u" needs a value"_s;
    if (dynamic_cast<const CLI::ConversionError *>(&error)) { // only flags are converted by CLI11
        static const QRegularExpression name(u"--[a-z-]+"_s);
        return name.match(text).captured() + u" takes no value"_s;
    }
    return text;
}

host_error usage_error(const CLI::App &app, const CLI::ParseError &error)
{
    const CLI::App &command = given_command(app);
    const QString name = command.get_parent() ? u' ' + QString::fromStdString(command.get_name()) : QString();
    return host_error(error_kind::refused,
                      reason_of(app, error) + u" (bluetooth-logs"_s + name + u" --help tells more)"_s);
}

std::function<exit_code(console &)> printing(const terminal_texts &lines, exit_code code)
{
    return [lines, code](console &out) {
        out.print(lines);
        return code;
    };
}

/** "help" and "help show": for those who look for it there. */
void add_help_command(CLI::App &app, command_line &line)
{
    const auto name = std::make_shared<QString>();
    CLI::App &help = *app.add_subcommand("help", "Print this help, or that of a command");
    add_text(help, {"COMMAND", "", "One of the commands", {"bluetooth-logs help extract"}}, *name);
    help.final_callback([&app, name, &line] {
        if (!name->isEmpty() && !command_names(app).contains(*name))
            throw host_error(error_kind::refused, no_such_command(app, *name));
        const CLI::App &meant = name->isEmpty() ? app : *app.get_subcommand(name->toStdString());
        line.command = printing(help_of(meant), exit_code::done);
    });
}

/** The program and the libraries that read containers, a line each. */
std::string version_text()
{
    const auto line = [](const char *what, const QString &library) {
        return std::string("\n") + what + (library.isEmpty() ? "not in this build" : library.toStdString());
    };
    return "bluetooth-logs " BLUETOOTH_LOGS_VERSION + line("archives: ", archive_library())
           + line("images: ", image_library());
}

void add_general_options(CLI::App &app)
{
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", std::function<std::string()>(version_text))->description("Print the version");
    app.require_subcommand(1);
    app.fallthrough();
    app.add_flag("-q,--quiet")->description("Print only data, warnings and errors");
    app.add_flag("--no-color")->description("Print no colours on a terminal; the variable NO_COLOR does the same");
}

} // namespace

command_line parse_command_line(int argc, char **argv)
{
    command_line line;
    for (int i = 1; i < argc; ++i)
        line.arguments.append(QString::fromLocal8Bit(argv[i]));
    CLI::App app("Extracts the Bluetooth devices of macOS, iOS and Windows sources.", "bluetooth-logs");
    add_general_options(app);
    add_sample_command(app, line);
    add_extract_command(app, line);
    add_collect_command(app, line);
    add_verify_command(app, line);
    add_note_command(app, line);
    add_inspect_command(app, line);
    add_report_command(app, line);
    add_show_command(app, line);
    add_help_command(app, line);
    app.footer(exit_codes_help); // last: commands would have it too

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForVersion &version) {
        const QStringList lines = QString::fromUtf8(version.what()).split(u'\n');
        line.command = printing(terminal_texts(lines.cbegin(), lines.cend()), exit_code::done);
    } catch (const CLI::Success &) {
        line.command = printing(help_of(given_command(app)), exit_code::done);
    } catch (const CLI::ParseError &error) {
        if (app.get_subcommands().empty() && app.remaining(true).empty())
            line.command = printing(help_of(app), exit_code::usage);
        else
            line.problem = usage_error(app, error);
    } catch (const host_error &error) {
        line.problem = error;
    }
    line.output.quiet = app.count("--quiet") > 0;
    line.output.no_color = app.count("--no-color") > 0;
    return line;
}
