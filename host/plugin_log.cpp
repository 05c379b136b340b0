// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/plugin_log.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** A kind of failure: how its message begins, and what the examiner reads. */
struct failure_kind
{
    QLatin1StringView message;
    QLatin1StringView words;
    bool is_insert = false;
};

// clang-format off
constexpr failure_kind failure_kinds[] = {
    {QLatin1StringView("query insert file"),             QLatin1StringView("a row could not be written"), true},
    {QLatin1StringView("-- READ WARNING -- "),           QLatin1StringView("a source database could not be read, or not to its end")},
    {QLatin1StringView("source file open"),              QLatin1StringView("the log text could not be opened")},
    {QLatin1StringView("Destination Db opening"),        QLatin1StringView("the result database could not be opened")},
    {QLatin1StringView("Source Db opening"),             QLatin1StringView("the copy of a source database could not be opened")},
    {QLatin1StringView("table creation"),                QLatin1StringView("a result table could not be created")},
};
// clang-format on

constexpr QLatin1StringView read_warning("READ WARNING");

/** The message of a log line, null if the line is none of the log's own. */
QString message_of(const QString &line)
{
    static const QRegularExpression form(uR"(^\[[^\]]*\]\[.*?\]\[Artifacts Extraction\]\[[^\]]*\]:-- (.*)$)"_s);
    const QRegularExpressionMatch match = form.match(line);
    return match.hasMatch() ? match.captured(1) : QString();
}

bool reports_failure(const QString &message)
{
    static const QRegularExpression mark(u"-FAILED-"_s);
    return message.contains(mark) || message.contains(read_warning);
}

/** "a row could not be written: table devices has no column named model". */
logged_failure describe(const QString &message, const QString &next_message)
{
    const QString text = message.trimmed();
    for (const failure_kind &kind : failure_kinds) {
        const qsizetype at = message.indexOf(kind.message);
        if (at == -1)
            continue;
        // The reason stands in the same message after a read warning, in the next one else.
        const QString reason = kind.message.contains(read_warning) ? message.sliced(at + kind.message.size())
                                                                   : next_message.trimmed();
        return {kind.words + (reason.isEmpty() ? QString() : u": "_s + reason), 1, kind.is_insert};
    }
    return {text, 1, false};
}

} // namespace

QList<logged_failure> failures_in_log(QString text, const QStringList &known_paths)
{
    for (const QString &path : known_paths)
        text.remove(path);

    QList<logged_failure> failures;
    const QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString message = message_of(lines.at(i));
        if (!reports_failure(message))
            continue;
        const logged_failure failure = describe(message, message_of(lines.value(i + 1)));
        const auto known = std::find_if(failures.begin(), failures.end(),
                                        [&failure](const auto &other) { return other.text == failure.text; });
        if (known == failures.end())
            failures.append(failure);
        else
            ++known->count;
    }
    return failures;
}
