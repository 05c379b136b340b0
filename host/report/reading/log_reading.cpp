// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/log_reading.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

using cell = cell;
using type = cell::type;

constexpr qsizetype date_length = 15; // "May 17 12:11:05"

cell value_of_bytes(const std::optional<QByteArray> &bytes)
{
    cell result;
    if (bytes) {
        result.kind = type::text;
        result.bytes = *bytes;
    }
    return result;
}

/** A number of the log is a number here: "-60" is no text that a spreadsheet takes for a formula. */
cell number_or_text(const std::optional<QByteArray> &bytes)
{
    cell result = value_of_bytes(bytes);
    bool is_number = false;
    result.integer = result.bytes.toByteArray().toLongLong(&is_number);
    if (is_number && QByteArray::number(result.integer) == result.bytes)
        result.kind = type::integer;
    return result;
}

} // namespace

log_reading::log_reading(const QString &lines, const QString &log, const QString &result_table,
                         const sqlite_statement &row, const vendor_list &vendor_names)
    : vendors(vendor_names)
    , file(lines)
    , log_name(log.toUtf8())
    , table(result_table)
    , date_column(row.column_named("date"_L1))
    , name_column(row.column_named("device_name"_L1))
{
    if (!file.open(QIODevice::ReadOnly))
        problem_text = u"ios_lines.jsonl cannot be read: "_s + file.errorString();
}

bool log_reading::advance()
{
    while (file.isOpen() && !file.atEnd()) {
        QJsonParseError error;
        const QJsonObject json = QJsonDocument::fromJson(file.readLine(), &error).object();
        if (error.error != QJsonParseError::NoError) {
            problem_text = u"ios_lines.jsonl is damaged: "_s + error.errorString();
            return false;
        }
        if (json.value("table"_L1).toString() != table)
            continue;
        next_place = {log_name, {}, {}, json.value("line"_L1).toInteger(), json.value("offset"_L1).toInteger()};
        const QJsonValue text = json.value("text"_L1);
        line = text.isString() ? text.toString().toUtf8()
                               : QByteArray::fromBase64(text.toObject().value("base64"_L1).toString().toLatin1());
        return true;
    }
    return false;
}

void log_reading::next(const sqlite_statement &row)
{
    current_place = {};
    if (advance())
        describe(row);
}

void log_reading::describe(const sqlite_statement &row)
{
    current_place = next_place;
    fields = read_device_line(line);
    vendor = vendors.vendor_of_first_public({fields.identifier.value_or(QByteArray())});
    differs = {};
    const auto text_in = [&row](int column) { return column < 0 ? QByteArray() : row.bytes(column).toByteArray(); };
    if (date_column >= 0 && text_in(date_column) != line.first(qMin(line.size(), date_length)))
        differs = "date";
    if (decoded_escapes(text_in(name_column)) != fields.name.value_or(QByteArray()))
        differs += differs.isEmpty() ? "device_name" : ", device_name";
}

cell log_reading::value_of(host_field field) const
{
    if (current_place.file.isEmpty())
        return {};
    switch (field) {
    case host_field::name:
        return value_of_bytes(fields.name);
    case host_field::rssi:
        return number_or_text(fields.rssi);
    case host_field::aid:
        return value_of_bytes(fields.aid);
    case host_field::line_text:
        return value_of_bytes(line);
    case host_field::vendor:
        return vendor.isEmpty() ? cell() : value_of_bytes(vendor);
    case host_field::differs:
        return differs.isEmpty() ? cell() : value_of_bytes(differs);
    default:
        return {};
    }
}
