// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/plugin_log.h"

#include "host/files/sha256.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 longest_log_line = qint64(1) << 24; // bytes; of a longer line the rest is read as another one
constexpr qsizetype most_failure_kinds = 1000;

constexpr QLatin1StringView line_middle("][Artifacts Extraction][");
constexpr QLatin1StringView message_start("]:-- ");
constexpr QLatin1StringView failure_mark("-FAILED-");
constexpr QLatin1StringView read_warning("-- READ WARNING -- ");
constexpr QLatin1StringView read_error(" Error :- "); // stands alone, or is the reason of the failure before it
constexpr QLatin1StringView last_message("[pub_extract_artifacts] - END");

enum class reason_place { next_line, same_line };

/** A kind of failure: how its message begins, what the examiner reads, and where the log gives the reason. */
struct failure_kind
{
    QLatin1StringView message;
    QLatin1StringView words;
    reason_place reason = reason_place::next_line;
    bool is_insert = false;
};

// clang-format off
constexpr failure_kind failure_kinds[] = {
    {"query insert file"_L1,      "a row could not be written"_L1,                                    reason_place::next_line, true},
    {read_warning,                "a source database could not be read, or not to its end"_L1,        reason_place::same_line},
    {"source file open"_L1,       "the log text could not be opened"_L1},
    {read_error,                  "the log text could not be read to its end"_L1,                     reason_place::same_line},
    {"Destination Db opening"_L1, "the result database could not be opened"_L1},
    {"Source Db opening"_L1,      "the copy of a source database could not be opened"_L1},
    {"table creation"_L1,         "a result table could not be created"_L1},
};
// clang-format on

// What the database driver puts around the texts of SQLite: the failing step before or behind the reason.
constexpr QLatin1StringView driver_texts[] = {
    "Unable to execute statement"_L1, "Unable to fetch row"_L1,          "Error opening database"_L1,
    "Unable to begin transaction"_L1, "Unable to commit transaction"_L1,
};

/** The reason alone, without what the driver says around it. */
QString plain_reason(const QString &logged)
{
    QString reason = logged.trimmed();
    for (const QLatin1StringView text : driver_texts) {
        if (reason.endsWith(text) && reason.size() > text.size())
            reason = reason.chopped(text.size()).trimmed();
    }
    return reason;
}

/**
 * The message of a log line, "[time][engine][Artifacts Extraction][function]:-- message"; null if the line is none of
 * the log's own. A regular expression would refuse texts with half a character of UTF-16.
 */
QString message_of(const QString &line)
{
    const qsizetype function = line.indexOf(line_middle);
    const qsizetype end = line.indexOf(u']', function + line_middle.size());
    if (!line.startsWith(u'[') || function == -1 || !line.sliced(qMax<qsizetype>(0, end)).startsWith(message_start))
        return {};
    const QString message = line.sliced(end + message_start.size());
    return message.isNull() ? u""_s : message;
}

bool reports_failure(const QString &message)
{
    return message.contains(failure_mark) || message.contains(read_warning) || message.startsWith(read_error);
}

/** "a row could not be written: table devices has no column named model". */
logged_failure describe(const QString &message, const QString &next_message)
{
    for (const failure_kind &kind : failure_kinds) {
        const qsizetype at = message.indexOf(kind.message);
        if (at == -1)
            continue;
        const QString reason = plain_reason(
            kind.reason == reason_place::same_line ? message.sliced(at + kind.message.size()) : next_message);
        return {kind.words + (reason.isEmpty() ? QString() : u": "_s + reason), 1, kind.is_insert};
    }
    return {message.trimmed(), 1, false};
}

void add(log_findings &findings, const logged_failure &failure)
{
    const auto known = std::find_if(findings.failures.begin(), findings.failures.end(),
                                    [&failure](const auto &other) { return other.text == failure.text; });
    if (known != findings.failures.end())
        ++known->count;
    else if (findings.failures.size() < most_failure_kinds)
        findings.failures.append(failure);
    else
        ++findings.other_failures;
}

} // namespace

QJsonObject log_findings::to_json() const
{
    QJsonArray list;
    for (const logged_failure &failure : failures)
        list.append(
            QJsonObject{{u"text"_s, failure.text}, {u"count"_s, failure.count}, {u"is_insert"_s, failure.is_insert}});
    return {{u"failures"_s, list},
            {u"other_failures"_s, other_failures},
            {u"sha256"_s, sha256},
            {u"is_out_of_memory"_s, is_out_of_memory}};
}

log_findings log_findings::from_json(const QJsonObject &json)
{
    log_findings findings;
    for (const auto value : json.value("failures"_L1).toArray()) {
        const QJsonObject failure = value.toObject();
        findings.failures.append({failure.value("text"_L1).toString(), failure.value("count"_L1).toInteger(),
                                  failure.value("is_insert"_L1).toBool()});
    }
    findings.other_failures = json.value("other_failures"_L1).toInteger();
    findings.sha256 = json.value("sha256"_L1).toString();
    findings.is_out_of_memory = json.value("is_out_of_memory"_L1).toBool();
    return findings;
}

log_findings read_plugin_log(QIODevice &log, const QStringList &known_paths)
{
    log_findings findings;
    sha256 hash;
    QString failed; // a failure whose reason may stand in the line to come
    const auto settle = [&](const QString &next_message) {
        if (failed.isNull())
            return;
        const logged_failure failure = describe(failed, next_message);
        findings.is_out_of_memory = findings.is_out_of_memory || failure.text.endsWith(": out of memory"_L1);
        add(findings, failure);
        failed = QString();
    };
    for (;;) {
        const QByteArray bytes = log.readLine(longest_log_line);
        if (bytes.isEmpty())
            break;
        hash.add(bytes);
        QString line = QString::fromLocal8Bit(bytes.endsWith('\n') ? bytes.chopped(1) : bytes);
        for (const QString &path : known_paths)
            line.remove(path);
        const QString message = message_of(line);
        const bool is_reason = !failed.isNull() && message.startsWith(read_error);
        settle(message);
        if (reports_failure(message) && !is_reason)
            failed = message;
    }
    settle({});
    findings.sha256 = hash.result();
    return findings;
}

bool is_log_line(const QString &text)
{
    return !message_of(text).isNull();
}

bool is_last_log_line(const QString &line)
{
    return message_of(line) == last_message;
}
