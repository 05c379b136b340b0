// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/verify_command.h"

#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/files/utc_time.h"
#include "host/run/source_survey.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QString files_text(qsizetype count, const QString &what)
{
    return QString::number(count) + (count == 1 ? u" file of the "_s : u" files of the "_s) + what;
}

/** What was compared, and nothing else. */
QString compared_text(const check_outcome &outcome)
{
    QStringList texts;
    const auto add = [&](compared_file::place kind, const QString &what) {
        if (const qsizetype count = outcome.count(kind); count > 0)
            texts.append(files_text(count, what));
    };
    add(compared_file::place::evidence, u"evidence"_s);
    add(compared_file::place::result, u"case"_s);
    add(compared_file::place::report, u"reports"_s);
    return texts.isEmpty() ? u"nothing was compared"_s : texts.join(u", "_s) + u" compared"_s;
}

QLatin1StringView verdict_word(outcome_code code)
{
    switch (code) {
    case outcome_code::evidence_changed:
        return "changed"_L1;
    case outcome_code::partial:
        return "incomplete"_L1;
    case outcome_code::no_evidence:
        return "not checked"_L1;
    default:
        return "unchanged"_L1;
    }
}

void print(const check_outcome &outcome, console &out)
{
    for (const QString &note : outcome.notes)
        out.note(note);
    for (const QString &difference : outcome.differences)
        out.error(difference);
    for (const QString &text : outcome.incomplete)
        out.error(text);
    for (const QString &text : outcome.missing)
        out.error(text);
}

} // namespace

QString verdict(const check_outcome &outcome)
{
    const QString compared = compared_text(outcome);
    switch (outcome.code()) {
    case outcome_code::evidence_changed:
        return u"CHANGED     "_s + QString::number(outcome.differences.size())
               + (outcome.differences.size() == 1 ? u" difference, "_s : u" differences, "_s) + compared;
    case outcome_code::partial:
        return u"INCOMPLETE  what is there is unchanged, "_s + compared;
    case outcome_code::no_evidence:
        return u"NOT CHECKED evidence is not there to be looked at; the case itself is unchanged, "_s + compared;
    default:
        return u"UNCHANGED   "_s + compared
               + (outcome.count(compared_file::place::evidence) == 0 ? u", no evidence among them"_s : QString());
    }
}

QJsonObject verification_record(const check_request &request, const check_outcome &outcome, const QString &time)
{
    QJsonObject record = outcome.to_json();
    record.insert("format"_L1, u"bluetooth-logs verification"_s);
    record.insert("version"_L1, 1);
    record.insert("case"_L1, request.directory);
    record.insert("verified"_L1, time);
    record.insert("tool_version"_L1, QStringLiteral(BLUETOOTH_LOGS_VERSION));
    record.insert("noted_manifest_sha256"_L1,
                  request.manifest_sha256.isEmpty() ? QJsonValue() : QJsonValue(request.manifest_sha256.toLower()));
    record.insert("evidence_left_out"_L1, request.leaves_out_evidence);
    record.insert("verdict"_L1, QString(verdict_word(outcome.code())));
    return record;
}

exit_code run_verify(const verify_options &options, console &out)
{
    if (!options.record_file.isEmpty() && path_exists(options.record_file))
        throw host_error(error_kind::refused, options.record_file + u" is there already: --record takes a new name"_s);
    check_request request = options.request;
    request.rehash_image = hashes_of_image;
    const check_outcome outcome = check_case(request);
    for (const QString &place : outcome.evidence_places) {
        if (!options.record_file.isEmpty() && is_inside(options.record_file, place))
            throw host_error(error_kind::refused,
                             u"--record: nothing is written into the evidence: "_s + options.record_file);
    }
    const QJsonObject record = verification_record(options.request, outcome, utc_now());
    print(outcome, out);
    if (!options.record_file.isEmpty())
        write_json_file(options.record_file, record);
    if (options.json)
        out.print_bytes(QJsonDocument(record).toJson());
    else
        out.print_unless_quiet({verdict(outcome)});
    return exit_code_of(outcome.code());
}
