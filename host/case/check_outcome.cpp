// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/check_outcome.h"
#include "host/text/json_member.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView place_names[] = {"manifest"_L1, "case"_L1, "evidence"_L1, "report"_L1};
constexpr QLatin1StringView finding_names[] = {"unchanged"_L1, "changed"_L1, "missing"_L1, "new"_L1, "unreadable"_L1};

} // namespace

QJsonObject compared_file::to_json() const
{
    return {{u"kind"_s, QString(place_names[int(kind)])},
            {u"path"_s, path},
            {u"outcome"_s, QString(finding_names[int(outcome)])},
            {u"expected_sha256"_s, text_or_null(expected)},
            {u"found_sha256"_s, text_or_null(found)}};
}

outcome_code check_outcome::code() const
{
    if (!differences.isEmpty())
        return outcome_code::evidence_changed;
    if (!incomplete.isEmpty())
        return outcome_code::partial;
    return missing.isEmpty() ? outcome_code::done : outcome_code::no_evidence;
}

qsizetype check_outcome::count(compared_file::place kind) const
{
    return std::count_if(files.cbegin(), files.cend(), [kind](const compared_file &file) { return file.kind == kind; });
}

QJsonObject check_outcome::to_json() const
{
    QJsonArray compared;
    for (const compared_file &file : files)
        compared.append(file.to_json());
    return {{u"exit_code"_s, int(code())},
            {u"manifest_sha256"_s, text_or_null(manifest_sha256)},
            {u"differences"_s, QJsonArray::fromStringList(differences)},
            {u"incomplete"_s, QJsonArray::fromStringList(incomplete)},
            {u"missing"_s, QJsonArray::fromStringList(missing)},
            {u"notes"_s, QJsonArray::fromStringList(notes)},
            {u"files"_s, compared}};
}
