// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/source_record.h"

#include "host/case/outcome_code.h"
#include "host/text/count_text.h"
#include "host/text/json_member.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView status_names[] = {
    "running"_L1,   "done"_L1,          "partial"_L1,     "failed"_L1,           "crashed"_L1,
    "timed out"_L1, "out of memory"_L1, "interrupted"_L1, "evidence changed"_L1, "not run"_L1,
};

QJsonValue number_or_null(const std::optional<qint64> &number)
{
    return number ? QJsonValue(*number) : QJsonValue();
}

std::optional<qint64> number_from(const QJsonValue &json)
{
    if (!json.isDouble())
        return {};
    return json.toInteger();
}

} // namespace

bool is_complete(source_status status)
{
    return status == source_status::done || status == source_status::partial
           || status == source_status::evidence_changed;
}

QLatin1StringView status_name(source_status status)
{
    return status_names[int(status)];
}

std::optional<source_status> status_named(const QString &name)
{
    const auto found = std::find(std::begin(status_names), std::end(status_names), name);
    if (found == std::end(status_names))
        return {};
    return source_status(found - std::begin(status_names));
}

QString sightings_text(const table_rows &rows)
{
    if (!rows.devices)
        return {};
    return count_text(rows.stored) + (rows.stored == 1 ? u" sighting of "_s : u" sightings of "_s)
           + count_text(*rows.devices) + (rows.devices == 1 ? u" device"_s : u" devices"_s);
}

QJsonObject rows_to_json(const QList<table_rows> &rows)
{
    QJsonObject json;
    for (const table_rows &table : rows) {
        QJsonObject counts{{u"found"_s, number_or_null(table.found)},
                           {u"announced"_s, number_or_null(table.announced)},
                           {u"stored"_s, number_or_null(table.stored)}};
        if (table.devices)
            counts.insert("devices"_L1, *table.devices);
        json.insert(table.table, counts);
    }
    return json;
}

QList<table_rows> rows_from_json(const QJsonObject &json)
{
    QList<table_rows> rows;
    for (auto table = json.begin(); table != json.end(); ++table) {
        const QJsonObject counts = table.value().toObject();
        rows.append({table.key(), number_from(counts.value("found"_L1)), number_from(counts.value("announced"_L1)),
                     number_from(counts.value("stored"_L1)), number_from(counts.value("devices"_L1))});
    }
    return rows;
}

void source_record::add_error(const QString &text)
{
    messages.append({run_message::weight::error, text});
    if (status != source_status::done)
        return;
    status = source_status::partial;
    exit_code = int(outcome_code::partial);
}

QJsonObject source_record::to_json() const
{
    QJsonArray texts;
    for (const run_message &message : messages)
        texts.append(message.to_json());
    const QJsonObject of_evidence = evidence.to_json();
    QJsonValue result;
    if (!result_path.isEmpty())
        result = QJsonObject{{u"path"_s, result_path}, {u"sha256"_s, text_or_null(result_sha256)}};

    QJsonObject json{
        {u"number"_s, number},
        {u"name"_s, name},
        {u"path"_s, path},
        {u"type"_s, type},
        {u"driven_as"_s, text_or_null(driven_as)},
        {u"container"_s, container},
        {u"status"_s, QString(status_name(status))},
        {u"exit_code"_s, exit_code ? QJsonValue(*exit_code) : QJsonValue()},
        {u"messages"_s, texts},
        {u"started"_s, text_or_null(started)},
        {u"finished"_s, text_or_null(finished)},
        {u"log_zone"_s, text_or_null(log_zone)},
        {u"rows"_s, rows_to_json(rows)},
        {u"evidence"_s, of_evidence.value("evidence"_L1)},
        {u"listing"_s, of_evidence.value("listing"_L1)},
        {u"wal"_s, wal},
        {u"confinement"_s, confinement},
        {u"host_devices"_s, host_devices},
        {u"salvaged"_s, salvaged},
        {u"unparsed_lines"_s, of_evidence.value("unparsed_lines"_L1)},
        {u"result"_s, result},
    };
    if (files)
        json.insert("files"_L1, kept_files_to_json(*files));
    return json;
}

source_record source_record::from_json(const QJsonObject &json)
{
    source_record record;
    record.number = json.value("number"_L1).toInt();
    record.name = json.value("name"_L1).toString();
    record.path = json.value("path"_L1).toString();
    record.type = json.value("type"_L1).toString();
    record.driven_as = json.value("driven_as"_L1).toString(record.type); // earlier versions drove each as its type
    record.container = json.value("container"_L1).isObject() ? json.value("container"_L1) : QJsonValue();
    record.status = status_named(json.value("status"_L1).toString()).value_or(source_status::failed);
    if (json.value("exit_code"_L1).isDouble())
        record.exit_code = json.value("exit_code"_L1).toInt();
    for (const auto message : json.value("messages"_L1).toArray())
        record.messages.append(run_message::from_json(message));
    record.started = json.value("started"_L1).toString();
    record.finished = json.value("finished"_L1).toString();
    record.log_zone = json.value("log_zone"_L1).toString();
    record.rows = rows_from_json(json.value("rows"_L1).toObject());
    record.evidence = evidence_state::from_json(json);
    record.wal = json.value("wal"_L1);
    const QJsonValue confinement = json.value("confinement"_L1);
    record.confinement = confinement.isObject() ? confinement : QJsonValue();
    record.host_devices = json.value("host_devices"_L1);
    record.salvaged = json.value("salvaged"_L1);
    const QJsonObject result = json.value("result"_L1).toObject();
    record.result_path = result.value("path"_L1).toString();
    record.result_sha256 = result.value("sha256"_L1).toString();
    if (json.value("files"_L1).isArray())
        record.files = kept_files_from_json(json.value("files"_L1).toArray());
    return record;
}
