// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/worker_protocol.h"

#include "host/text/json_member.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView task_names[] = {"extract"_L1, "inspect"_L1, "settle"_L1, "survey"_L1};

constexpr QLatin1StringView event_names[] = {
    ""_L1,        "loaded"_L1, "confined"_L1,  "taken out"_L1, "looked"_L1,  "hashed"_L1,    "read"_L1,
    "records"_L1, "table"_L1,  "extracted"_L1, "inspected"_L1, "problem"_L1, "no memory"_L1, "surveyed"_L1,
};

QByteArray to_line(const QJsonObject &json)
{
    return QJsonDocument(json).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray event_line(worker_event event, QJsonObject members = {})
{
    members.insert("event"_L1, QString(event_names[int(event)]));
    return to_line(members);
}

worker_event event_named(const QString &name)
{
    const auto found = std::find(std::begin(event_names), std::end(event_names), name);
    return found == std::end(event_names) ? worker_event::unknown : worker_event(found - std::begin(event_names));
}

} // namespace

QByteArray worker_order::to_line() const
{
    QJsonObject json = request.to_json();
    json.insert("task"_L1, QString(task_names[int(to_do)]));
    json.insert("evidence"_L1, evidence.to_json());
    return ::to_line(json);
}

worker_order worker_order::from_line(const QByteArray &line)
{
    const QJsonObject json = QJsonDocument::fromJson(line).object();
    const auto name = std::find(std::begin(task_names), std::end(task_names), json.value("task"_L1).toString());
    worker_order order;
    order.to_do = name == std::end(task_names) ? task::extract : task(name - std::begin(task_names));
    order.request = source_request::from_json(json);
    order.evidence = evidence_state::from_json(json.value("evidence"_L1).toObject());
    return order;
}

QByteArray loaded_line()
{
    return event_line(worker_event::loaded);
}

QByteArray confined_line(const QJsonObject &confinement)
{
    return event_line(worker_event::confined, {{u"confinement"_s, confinement}});
}

QByteArray taken_out_line(const taken_evidence &taken)
{
    return event_line(worker_event::taken_out, {{u"source"_s, source_to_json(taken.source)},
                                                {u"warnings"_s, QJsonArray::fromStringList(taken.warnings)},
                                                {u"errors"_s, QJsonArray::fromStringList(taken.errors)}});
}

QByteArray read_line(qint64 more_bytes)
{
    return event_line(worker_event::read, {{u"bytes"_s, more_bytes}});
}

QByteArray surveyed_line(const QJsonObject &survey)
{
    return event_line(worker_event::surveyed, {{u"survey"_s, survey}});
}

QByteArray looked_line(const evidence_state &evidence)
{
    return event_line(worker_event::looked, {{u"evidence"_s, evidence.to_json()}});
}

QByteArray hashed_line(qint64 more_bytes)
{
    return event_line(worker_event::hashed, {{u"bytes"_s, more_bytes}});
}

QByteArray records_line(qint64 count)
{
    return event_line(worker_event::records, {{u"count"_s, count}});
}

QByteArray table_done_line(const QString &table, qint64 rows)
{
    return event_line(worker_event::table_done, {{u"table"_s, table}, {u"count"_s, rows}});
}

QByteArray extracted_line(const plugin_log_end &log)
{
    return event_line(worker_event::extracted, {{u"log_sha256"_s, log.sha256}, {u"is_last"_s, log.is_last}});
}

QByteArray inspected_line(const inspection &found)
{
    return event_line(worker_event::inspected, {{u"inspection"_s, found.to_json()}});
}

QByteArray problem_line(const host_error &error)
{
    return event_line(worker_event::problem, {{u"text"_s, error.message()}, {u"kind"_s, int(error.kind())}});
}

worker_event worker_report::take(const QByteArray &line)
{
    const QJsonObject json = QJsonDocument::fromJson(line).object();
    const worker_event event = event_named(json.value("event"_L1).toString());
    switch (event) {
    case worker_event::loaded:
        is_loaded = true;
        break;
    case worker_event::confined:
        if (confinement.isNull())
            confinement = json.value("confinement"_L1);
        break;
    case worker_event::looked:
        looked = evidence_state::from_json(json.value("evidence"_L1).toObject());
        break;
    case worker_event::taken_out:
        taken_out = taken_evidence{source_from_json(json.value("source"_L1).toObject()),
                                   texts_from(json.value("warnings"_L1)), texts_from(json.value("errors"_L1))};
        break;
    case worker_event::surveyed:
        survey = json.value("survey"_L1).toObject();
        break;
    case worker_event::hashed:
    case worker_event::read:
        last_count = json.value("bytes"_L1).toInteger();
        break;
    case worker_event::records:
        last_count = json.value("count"_L1).toInteger();
        break;
    case worker_event::table_done:
        announced.insert(json.value("table"_L1).toString(), json.value("count"_L1).toInteger());
        break;
    case worker_event::extracted:
        extracted = plugin_log_end{json.value("log_sha256"_L1).toString(), json.value("is_last"_L1).toBool()};
        break;
    case worker_event::inspected:
        inspected = inspection::from_json(json.value("inspection"_L1).toObject());
        break;
    case worker_event::problem:
        problems.append(json.value("text"_L1).toString());
        problem_kind = error_kind(json.value("kind"_L1).toInt());
        break;
    case worker_event::no_memory:
        is_out_of_memory = true;
        break;
    case worker_event::unknown:
        break;
    }
    return event;
}
