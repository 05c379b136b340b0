// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/record_objections.h"

#include "host/case/case_sources.h"
#include "host/case/kept_file.h"
#include "host/case/outcome_code.h"
#include "host/case/source_record.h"
#include "host/files/host_error.h"

#include <QJsonArray>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

constexpr outcome_code known_codes[] = {outcome_code::done,
                                        outcome_code::failed,
                                        outcome_code::no_evidence,
                                        outcome_code::partial,
                                        outcome_code::evidence_changed,
                                        outcome_code::interrupted};

QString objection_to_number(const QJsonObject &record, int number)
{
    if (record.value("number"_L1) == number)
        return {};
    return u"its number is not "_s + QString::number(number);
}

QString objection_to_status(const QJsonObject &record, int)
{
    const QString status = record.value("status"_L1).toString();
    return status_named(status) ? QString() : QString(u"there is no status \""_s + status + u'"');
}

QString objection_to_code(const QJsonObject &record, int)
{
    const QJsonValue code = record.value("exit_code"_L1);
    const auto is_it = [&code](outcome_code known) { return code == int(known); };
    if (code.isNull() || code.isUndefined() || std::any_of(std::begin(known_codes), std::end(known_codes), is_it))
        return {};
    return u"no run ends with the exit code "_s + code.toVariant().toString();
}

QString outside(const QString &path)
{
    return u"the path "_s + path + u" leads out of the source's folder"_s;
}

QString objection_to_result(const QJsonObject &record, int number)
{
    const QJsonValue result = record.value("result"_L1);
    const QString path = result.toObject().value("path"_L1).toString();
    const source_layout layout(QString(), number);
    if (result.isNull() || result.isUndefined() || path == layout.relative_to_case(layout.result_database()))
        return {};
    return outside(path);
}

QString objection_to_evidence(const QJsonObject &record, int)
{
    for (const auto file : record.value("evidence"_L1).toArray()) {
        const QString path = file.toObject().value("path"_L1).toString();
        if (!stays_below(path))
            return outside(path);
    }
    return {};
}

QString objection_to_files(const QJsonObject &record, int number)
{
    for (const auto file : record.value("files"_L1).toArray()) {
        const QString path = file.toObject().value("path"_L1).toString();
        if (!stays_below(path) || !path.startsWith(source_name(number) + u'/'))
            return outside(path);
    }
    return {};
}

constexpr QString (*objections[])(const QJsonObject &record, int number) = {
    objection_to_number, objection_to_status,   objection_to_code,
    objection_to_result, objection_to_evidence, objection_to_files,
};

} // namespace

QString objection_to_record(const QJsonObject &record, int number)
{
    for (const auto objection : objections) {
        QString text = objection(record, number);
        if (!text.isEmpty())
            return text;
    }
    return {};
}

QString objection_to_sources(const QJsonObject &manifest)
{
    const QJsonArray sources = manifest.value("sources"_L1).toArray();
    if (sources.isEmpty())
        return u"it names no source"_s;
    QList<int> numbers;
    for (const auto value : sources) {
        const QJsonObject source = value.toObject();
        const int number = source.value("number"_L1).toInt(-1);
        if (!numbers.isEmpty() && number <= numbers.last())
            return u"source "_s + QString::number(number) + u" is there twice, or out of order"_s;
        const QString text = objection_to_record(source, number);
        if (number < 0 || !text.isEmpty())
            return source_name(number) + u": "_s + (number < 0 ? u"it has no number"_s : text);
        numbers.append(number);
    }
    const QString listed = manifest.value("case_sources"_L1).toObject().value("numbers"_L1).toString();
    if (numbers_in(listed) != numbers)
        return u"its sources are not those that it lists, "_s + listed;
    return {};
}
