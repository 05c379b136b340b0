// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/json_lines.h"

#include "host/files/host_error.h"
#include "host/text/json_text.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

void append_member(QByteArray &json, QByteArrayView name, const std::optional<qint64> &number)
{
    json.append(name);
    json.append(number ? QByteArray::number(*number) : QByteArray("null"));
}

void append_text_or_null(QByteArray &json, QByteArrayView text)
{
    if (text.isEmpty())
        json.append("null");
    else
        append_json_text(json, text);
}

/** "resolved_address": and so on, with the comma before all but the first. */
const QByteArrayList &host_members()
{
    static const QByteArrayList members = [] {
        QByteArrayList texts;
        for (const QLatin1StringView name : host_field_names)
            texts.append((texts.isEmpty() ? "\"" : ",\"") + QByteArray(name.data()) + "\":");
        return texts;
    }();
    return members;
}

} // namespace

QByteArray json_row_start(const report_source &source, const QString &table)
{
    QByteArray json = "{\"source\":" + QByteArray::number(source.record.number) + ",\"source_name\":";
    append_json_text(json, source.name.toUtf8());
    json += ",\"table\":";
    append_json_text(json, table.toUtf8());
    return json;
}

void append_json_locator(QByteArray &json, const row_place &place)
{
    json.append("\"locator\":{\"file\":");
    append_text_or_null(json, place.file);
    if (place.line) {
        append_member(json, ",\"line\":", place.line);
        append_member(json, ",\"offset\":", place.offset);
    } else {
        json.append(",\"table\":");
        append_text_or_null(json, place.table);
        append_member(json, ",\"rowid\":", place.rowid);
    }
    json.append('}');
}

void json_lines::begin_source(const report_row &row)
{
    source = &row.source;
    start = json_row_start(row.source, row.table) + ',';
    names.clear();
    for (int column = 0; column < row.plugin.column_count(); ++column) {
        QByteArray name(column == 0 ? "" : ",");
        append_json_text(name, row.plugin.column_name(column).toUtf8());
        names.append(name + ':');
    }
}

QByteArrayView json_lines::line(const report_row &row)
{
    if (source != &row.source)
        begin_source(row);
    json.resize(0);
    json.append(start);
    append_json_locator(json, row.host.place());
    json.append(",\"plugin\":{");
    for (int column = 0; column < names.size(); ++column) {
        json.append(names.at(column));
        append_json_value(json, row.plugin.value_of(column));
    }
    json.append("},\"host\":{");
    for (std::size_t field = 0; field < host_field_names.size(); ++field) {
        json.append(host_members().at(qsizetype(field)));
        append_json_value(json, row.host.value_of(host_field(field)));
    }
    json.append("}}\n");
    return json;
}

void tell_wal_changes(const report_case &that_case, const report_source &source,
                      const std::function<void(QByteArrayView line)> &tell)
{
    QFile file(that_case.layout.source(source.record.number).wal_changes());
    if (!file.open(QIODevice::ReadOnly))
        return;
    // One change a line, and one line before those of a table: no more than a row is held.
    QByteArray start;
    row_place place;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (line.startsWith("{\"result_table\":")) {
            const qsizetype end = line.indexOf(",\"changes\":[");
            const QJsonObject table = QJsonDocument::fromJson(line.first(qMax<qsizetype>(end, 0)) + '}').object();
            start = json_row_start(source, table.value("result_table"_L1).toString()) + ',';
            place.file = table.value("file"_L1).toString().toUtf8();
            place.table = table.value("table"_L1).toString().toUtf8();
            continue;
        }
        const qsizetype content = line.indexOf(",\"before\":");
        const qsizetype end = line.lastIndexOf('}') + 1;
        if (!line.startsWith("{\"change\":") || content < 0 || end < content)
            continue; // the file's own first and last lines
        const QJsonObject change = QJsonDocument::fromJson(line.first(content) + '}').object();
        place.rowid = change.value("rowid"_L1).toInteger();
        QByteArray json = start;
        append_json_locator(json, place);
        json += ",\"change\":";
        append_json_text(json, change.value("change"_L1).toString().toUtf8());
        json += line.sliced(content, end - content) + '\n';
        tell(json);
    }
}
