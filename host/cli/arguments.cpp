// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"

#include "host/cli/nearest_word.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

#include <QRegularExpression>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 least_mebibytes = 128; // with fewer no process starts
constexpr qint64 most_seconds = qint64(1) << 30;

QString valid_text(const argument &what, const std::string &value)
{
    QString text = QString::fromStdString(value);
    if (text.toStdString() != value)
        refuse(what, text + u" is no valid UTF-8"_s);
    return text;
}

qint64 number_of(const argument &what, const QString &text, qint64 least, qint64 most)
{
    static const QRegularExpression form(u"^[0-9]{1,18}$"_s);
    const qint64 number = form.match(text).hasMatch() ? text.toLongLong() : -1;
    if (number < least || number > most)
        refuse(what, text + u" is no number from "_s + QString::number(least) + u" to "_s + QString::number(most));
    return number;
}

} // namespace

QString argument::name() const
{
    return QString::fromStdString(names).section(u',', -1);
}

CLI::Option *add_values(CLI::App &command, const argument &what, const std::function<void(const QStringList &)> &take)
{
    const auto take_valid = [what, take](const std::vector<std::string> &values) {
        QStringList texts;
        for (const std::string &value : values)
            texts.append(valid_text(what, value));
        take(texts);
    };
    add_example(command, what.shown);
    return command.add_option_function<std::vector<std::string>>(what.names, take_valid, what.help)
        ->type_name(what.type)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CLI::Option *add_value(CLI::App &command, const argument &what, const std::function<void(const QString &)> &take)
{
    return add_values(command, what, [what, take](const QStringList &values) {
        if (values.size() > 1)
            refuse(what, u"given "_s + QString::number(values.size()) + u" times, and one value is possible"_s);
        take(values.first());
    });
}

CLI::Option *add_text(CLI::App &command, const argument &what, QString &text)
{
    return add_value(command, what, [&text](const QString &value) { text = value; });
}

CLI::Option *add_path(CLI::App &command, const argument &what, QString &path)
{
    return add_value(command, what, [&path, what](const QString &value) { path = absolute_path(value, what.name()); });
}

CLI::Option *add_place(CLI::App &command, const argument &what, QString &path)
{
    return add_value(command, what, [&path, what](const QString &value) {
        path = resolved_path(absolute_path(value, what.name()), what.name());
    });
}

CLI::Option *add_number(CLI::App &command, const argument &what, qint64 least, qint64 most, qint64 &number)
{
    return add_value(command, what, [&number, what, least, most](const QString &value) {
        number = number_of(what, value, least, most);
    });
}

CLI::Option *add_number(CLI::App &command, const argument &what, qint64 least, qint64 most,
                        std::optional<qint64> &number)
{
    return add_value(command, what, [&number, what, least, most](const QString &value) {
        number = number_of(what, value, least, most);
    });
}

void add_process_limits(CLI::App &command, const std::string &work, qint64 &mebibytes, qint64 &seconds)
{
    const std::string usual = seconds == 0 ? "any" : std::to_string(seconds);
    add_number(command,
               {"--memory-limit", "MIB",
                "Most memory that " + work + " may take (default " + std::to_string(mebibytes) + ")"},
               least_mebibytes, most_mebibytes, mebibytes);
    add_number(command, {"--timeout", "SECONDS", "Longest time that " + work + " may take (default: " + usual + ")"}, 1,
               most_seconds, seconds);
}

CLI::Option *add_flag(CLI::App &command, const argument &what, bool &flag)
{
    add_example(command, what.shown);
    return command.add_flag(what.names, flag, what.help);
}

void add_example(CLI::App &command, const example &shown)
{
    if (shown.line.empty())
        return;
    std::string footer = command.get_footer().empty() ? "Examples:" : command.get_footer();
    footer.append("\n  ").append(shown.line).append("\t").append(shown.meaning);
    command.footer(footer);
}

void require_choice(const argument &what, const QString &word, const QStringList &choices)
{
    if (choices.contains(word))
        return;
    const QString nearest = nearest_word(word, choices);
    refuse(what, word + u" is none of "_s + choices.join(u", "_s)
                     + (nearest.isEmpty() ? QString() : u": did you mean "_s + nearest + u'?'));
}

void refuse(const argument &what, const QString &reason)
{
    throw host_error(error_kind::refused, what.name() + u": "_s + reason);
}
