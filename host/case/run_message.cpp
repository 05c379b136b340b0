// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/run_message.h"

#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView weight_names[] = {"note"_L1, "warning"_L1, "error"_L1};

} // namespace

QJsonValue run_message::to_json() const
{
    return QJsonObject{{u"weight"_s, QString(weight_name(importance))}, {u"text"_s, text}};
}

run_message run_message::from_json(const QJsonValue &json)
{
    if (json.isString())
        return {weight::note, json.toString()};
    const auto name = std::find(std::begin(weight_names), std::end(weight_names), json["weight"_L1].toString());
    return {name == std::end(weight_names) ? weight::note : weight(name - std::begin(weight_names)),
            json["text"_L1].toString()};
}

QLatin1StringView weight_name(run_message::weight importance)
{
    return weight_names[int(importance)];
}
