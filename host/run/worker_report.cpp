// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/worker_report.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

QString worker_report::take(const QByteArray &line)
{
    const QJsonObject json = QJsonDocument::fromJson(line).object();
    QString event = json.value("event"_L1).toString();
    if (event == worker_events::loaded) {
        is_loaded = true;
    } else if (event == worker_events::looked) {
        looked = evidence_from_json(json.value("evidence"_L1).toObject());
    } else if (event == worker_events::hashed) {
        last_count = json.value("bytes"_L1).toInteger();
    } else if (event == worker_events::records) {
        last_count = json.value("count"_L1).toInteger();
    } else if (event == worker_events::table_done) {
        announced.insert(json.value("table"_L1).toString(), json.value("count"_L1).toInteger());
    } else if (event == worker_events::extracted) {
        is_extracted = true;
        log_has_its_end = json.value("log_has_its_end"_L1).toBool();
        log_sha256 = json.value("log_sha256"_L1).toString();
    } else if (event == worker_events::inspected) {
        inspected = inspection::from_json(json.value("inspection"_L1).toObject());
    } else if (event == worker_events::problem) {
        problems.append(json.value("text"_L1).toString());
    } else if (event == worker_events::no_memory) {
        is_out_of_memory = true;
    } else {
        return {};
    }
    return event;
}
