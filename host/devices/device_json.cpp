// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/device_json.h"

#include "host/text/json_text.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

void append_real(QByteArray &json, double number)
{
    if (std::isnan(number))
        json.append("{\"real\":\"nan\"}");
    else
        append_json_value(json, {cell::type::real, 0, number, {}});
}

void append_date(QByteArray &json, const QDateTime &date)
{
    const QString text = date.isValid() ? utc_of(date) : QString(); // none for years that ISO 8601 has no form for
    if (text.isEmpty())
        json.append("null");
    else
        append_json_text(json, text.toUtf8());
}

void append_list(QByteArray &json, const QVariantList &list)
{
    json.append('[');
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (i > 0)
            json.append(',');
        append_json_variant(json, list.at(i));
    }
    json.append(']');
}

void append_map(QByteArray &json, const QVariantMap &map)
{
    json.append('{');
    for (auto member = map.cbegin(); member != map.cend(); ++member) {
        if (member != map.cbegin())
            json.append(',');
        append_json_text(json, member.key().toUtf8());
        json.append(':');
        append_json_variant(json, member.value());
    }
    json.append('}');
}

} // namespace

QString utc_of(const QDateTime &time)
{
    const QDateTime utc = time.toUTC();
    return utc.toString(utc.time().msec() == 0 ? Qt::ISODate : Qt::ISODateWithMs);
}

void append_json_variant(QByteArray &json, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        json.append(value.toBool() ? "true" : "false");
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        json.append(QByteArray::number(value.toLongLong()));
        break;
    case QMetaType::ULongLong:
        json.append(QByteArray::number(value.toULongLong()));
        break;
    case QMetaType::Double:
        append_real(json, value.toDouble());
        break;
    case QMetaType::QString:
        append_json_text(json, value.toString().toUtf8());
        break;
    case QMetaType::QDateTime:
        append_date(json, value.toDateTime());
        break;
    case QMetaType::QByteArray:
        append_json_value(json, {cell::type::blob, 0, 0, value.toByteArray()});
        break;
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        append_list(json, value.toList());
        break;
    case QMetaType::QVariantMap:
        append_map(json, value.toMap());
        break;
    default:
        json.append("null");
    }
}
