// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/log_reading.h"

#include "host/files/open_without_links.h"
#include "host/report/reading/kept_lines.h"
#include "host/report/reading/log_date.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype date_length = 15; // "May 17 12:11:05"

cell text_or_null(const std::optional<QByteArray> &text)
{
    return text ? cell::of_text(*text) : cell();
}

/** A number of the log is a number here: "-60" is no text that a spreadsheet takes for a formula. */
cell number_or_text(const std::optional<QByteArray> &text)
{
    bool is_number = false;
    const qint64 number = text.value_or(QByteArray()).toLongLong(&is_number);
    return is_number && QByteArray::number(number) == *text ? cell::of_integer(number) : text_or_null(text);
}

} // namespace

log_reading::log_reading(const QString &lines, const QString &log, const QString &result_table,
                         const sqlite_statement &row, const vendor_list &vendor_names)
    : vendors(vendor_names)
    , log_name(log.toUtf8())
    , table(result_table)
    , date_column(row.column_named("date"_L1))
    , name_column(row.column_named("device_name"_L1))
{
    if (const QString problem = open_case_file(file, lines); !problem.isEmpty())
        problem_text = u"ios_lines.jsonl cannot be read: "_s + problem;
}

bool log_reading::advance()
{
    while (file.isOpen()) {
        const QByteArray kept = file.readLine();
        if (file.error() != QFileDevice::NoError)
            problem_text = u"ios_lines.jsonl cannot be read to its end: "_s + file.errorString();
        if (kept.isEmpty())
            return false;
        QJsonParseError error;
        const QJsonObject json = QJsonDocument::fromJson(kept, &error).object();
        if (error.error != QJsonParseError::NoError) {
            problem_text = u"ios_lines.jsonl is damaged: "_s + error.errorString();
            return false;
        }
        if (json.value("table"_L1).toString() != table)
            continue;
        next_place = {log_name, {}, {}, json.value("line"_L1).toInteger(), json.value("offset"_L1).toInteger()};
        line = bytes_of_json(json.value("text"_L1));
        return true;
    }
    return false;
}

void log_reading::next(const sqlite_statement &row)
{
    current = {};
    if (advance())
        describe(row);
}

void log_reading::describe(const sqlite_statement &row)
{
    current.place = next_place;
    fields = read_device_line(line);
    vendor = vendors.vendor_of_first_public({fields.identifier.value_or(QByteArray())});
    differs = {};
    const auto text_in = [&row](int column) { return column < 0 ? QByteArray() : row.bytes(column).toByteArray(); };
    if (date_column >= 0 && text_in(date_column) != line.first(qMin(line.size(), date_length)))
        differs = "date";
    if (decoded_escapes(text_in(name_column)) != fields.name.value_or(QByteArray()))
        differs += differs.isEmpty() ? "device_name" : ", device_name";
    current.name = text_or_null(fields.name);
    current.rssi = number_or_text(fields.rssi);
    current.aid = text_or_null(fields.aid);
    current.line_text = cell::of_text(line);
    date = zoned_date(line);
    current.date = cell::of_text_or_null(date);
    current.vendor = cell::of_text_or_null(vendor);
    current.differs = cell::of_text_or_null(differs);
}
