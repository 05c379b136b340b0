// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/help_text.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype widest_line = 100;
constexpr qsizetype name_columns = 28;
constexpr qsizetype examples_gap = 3;

/** "-i, --input PATH", "    --table TABLE" or "CASE". */
QString names_of(const CLI::Option &option)
{
    if (option.get_positional())
        return QString::fromStdString(option.get_name(true));
    const QString short_name = option.get_snames().empty()
                                   ? u"    "_s
                                   : u'-' + QString::fromStdString(option.get_snames().front()) + u", "_s;
    const QString long_name = u"--"_s + QString::fromStdString(option.get_lnames().front());
    const bool is_flag = option.get_items_expected_max() == 0;
    return short_name + long_name + (is_flag ? QString() : u' ' + QString::fromStdString(option.get_type_name()));
}

/** "  names   description", the description broken into lines at its blanks. */
QStringList entry_lines(const QString &names, const QString &description)
{
    QStringList lines{QString(u"  "_s + names).leftJustified(name_columns)};
    if (!lines.last().endsWith(u' '))
        lines.append(QString(name_columns, u' '));
    for (const QString &word : description.split(u' ')) {
        if (lines.last().size() + word.size() > widest_line)
            lines.append(QString(name_columns, u' '));
        lines.last() += word + u' ';
    }
    for (QString &line : lines)
        line = line.left(line.lastIndexOf(QRegularExpression(u"[^ ]"_s)) + 1);
    return lines;
}

QStringList option_lines(const QString &heading, const std::vector<const CLI::Option *> &options)
{
    QStringList lines;
    for (const CLI::Option *option : options)
        lines += entry_lines(names_of(*option), QString::fromStdString(option->get_description()));
    return lines.isEmpty() ? lines : QStringList{QString(), heading} + lines;
}

QStringList command_lines(const CLI::App &program)
{
    QStringList lines;
    for (const CLI::App *command : program.get_subcommands([](const CLI::App *) { return true; }))
        lines += entry_lines(QString::fromStdString(command->get_name()),
                             QString::fromStdString(command->get_description()));
    return lines.isEmpty() ? lines : QStringList{QString(), u"Commands:"_s} + lines;
}

/** "bluetooth-logs show [OPTIONS] CASE". */
QString usage_line(const CLI::App &command)
{
    QString line = QString::fromStdString(command.get_name());
    if (command.get_parent())
        line.prepend(QString::fromStdString(command.get_parent()->get_name()) + u' ');
    for (const CLI::Option *option : command.get_options()) {
        if (!option->get_positional() && option->get_required())
            line += u' ' + names_of(*option).section(u", "_s, -1);
    }
    line += u" [OPTIONS]"_s;
    for (const CLI::Option *option : command.get_options()) {
        if (option->get_positional())
            line += u' ' + names_of(*option);
    }
    return command.get_parent() ? line : line + u" COMMAND"_s;
}

QStringList footer_lines(const CLI::App &command)
{
    QStringList lines = QString::fromStdString(command.get_footer()).split(u'\n');
    qsizetype column = 0;
    for (const QString &line : std::as_const(lines))
        column = std::max(column, line.indexOf(u'\t') + examples_gap);
    for (QString &line : lines) {
        const QString meaning = line.section(u'\t', 1);
        line = line.section(u'\t', 0, 0);
        if (!meaning.isEmpty())
            line = line.leftJustified(column) + meaning;
    }
    return lines;
}

} // namespace

terminal_texts help_of(const CLI::App &command)
{
    const CLI::App *program = command.get_parent();
    const auto is_positional = [](const CLI::Option *option) { return option->get_positional(); };
    const auto is_option = [](const CLI::Option *option) { return !option->get_positional(); };
    const auto is_general = [&command](const CLI::Option *option) {
        return !command.get_option_no_throw(option->get_name());
    };

    QStringList lines{u"Usage: "_s + usage_line(command), QString(), QString::fromStdString(command.get_description())};
    lines += option_lines(u"Arguments:"_s, command.get_options(is_positional));
    lines += command_lines(command);
    lines += option_lines(u"Options:"_s, command.get_options(is_option));
    if (program)
        lines += option_lines(u"Options of every command:"_s, program->get_options(is_general));
    lines << QString() << footer_lines(command);
    return {lines.cbegin(), lines.cend()};
}
