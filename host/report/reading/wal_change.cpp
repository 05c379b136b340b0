// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/wal_change.h"

#include "host/files/paths.h"
#include "host/report/reading/common_columns.h"
#include "host/text/raw_json.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QByteArray text_in(const QJsonObject &json, QLatin1StringView member)
{
    return json.value(member).toString().toUtf8();
}

/** The row as the text that it is in the file; empty for null. */
QByteArray row_in(const QHash<QByteArrayView, QByteArrayView> &members, QByteArrayView name)
{
    const QByteArrayView row = members.value(name);
    return row == "null" ? QByteArray() : row.toByteArray();
}

/** Reads wal_changes.jsonl, and wal_changes.json as earlier versions wrote it. */
class wal_change_reader
{
public:
    wal_change_reader(const report_source &of_source, const std::function<void(const wal_change &change)> &taker)
        : source(of_source)
        , take(taker)
    {
    }

    /** False for a line that is none of such a file. */
    bool read(QByteArrayView line)
    {
        const auto members = raw_json_members(line);
        if (members && members->contains("change")) {
            const QJsonObject json = QJsonDocument::fromJson(line.toByteArray()).object();
            take({source, text_in(table_of(json), "result_table"_L1), place_of(json), text_in(json, "change"_L1),
                  row_in(*members, "before"), row_in(*members, "after")});
        }
        return members.has_value();
    }

    /** The earlier form: one document, of which each change is a line, and so is the start of each table. */
    bool read_earlier(QByteArrayView line)
    {
        const bool begins_table = line.startsWith("{\"result_table\":");
        const bool is_frame = line.startsWith(']') || line.startsWith("{\"format\":");
        if (begins_table)
            table = QJsonDocument::fromJson(line.toByteArray() + "]}").object();
        return is_frame || (begins_table ? !table.isEmpty() : read(line.endsWith(',') ? line.chopped(1) : line));
    }

private:
    /** What says which table a change is of: the change itself, or the line before it. */
    const QJsonObject &table_of(const QJsonObject &change) const
    {
        return change.contains("result_table"_L1) ? change : table;
    }

    row_place place_of(const QJsonObject &change) const
    {
        const QJsonObject &named = table_of(change);
        return {text_in(named, "file"_L1), text_in(named, "table"_L1), change.value("rowid"_L1).toInteger(), {}, {}};
    }

    const report_source &source;
    const std::function<void(const wal_change &change)> &take;
    QJsonObject table; ///< of the changes that follow, in the earlier form
};

} // namespace

const line_columns<wal_change> &wal_columns()
{
    using group = column_group;
    // clang-format off
    static const line_columns<wal_change> columns =
        source_columns<wal_change>()
        + line_columns<wal_change>{
            {{"table"_ba, group::source, {}, {}, "Table"_L1, "the table of the result that the plug-in puts such rows into"_L1},
             [](const wal_change &line) { return cell::of_text(line.table); }},
            {{"change"_ba, group::line, {}, {}, "Change"_L1, "what the write-ahead log does to the row: added, changed or deleted"_L1},
             [](const wal_change &line) { return cell::of_text(line.change); }},
            {{"before"_ba, group::line, {}, true, "In the main file"_L1, "the row in the main file alone"_L1},
             [](const wal_change &line) { return cell::of_text_or_null(line.before); }},
            {{"after"_ba, group::line, {}, true, "With the log"_L1, "the row in the main file with its write-ahead log"_L1},
             [](const wal_change &line) { return cell::of_text_or_null(line.after); }},
        }
        + place_columns<wal_change>();
    // clang-format on
    return columns;
}

QString for_each_wal_change(const report_case &that_case, const report_source &source,
                            const std::function<void(const wal_change &change)> &take)
{
    const source_layout layout = that_case.layout.source(source.record.number);
    const bool is_earlier = !path_exists(layout.wal_changes());
    QFile file(is_earlier ? layout.earlier_wal_changes() : layout.wal_changes());
    if (!path_exists(file.fileName()))
        return {};
    const QString name = QFileInfo(file).fileName();
    if (!file.open(QIODevice::ReadOnly))
        return name + u" cannot be read: "_s + file.errorString();
    wal_change_reader reader(source, take);
    QString problem;
    while (!file.atEnd()) { // no more than a row is held
        const QByteArray line = file.readLine().trimmed();
        if (!(is_earlier ? reader.read_earlier(line) : reader.read(line)))
            problem = name + u" is damaged"_s;
    }
    return problem;
}
