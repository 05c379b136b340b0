// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/wal_change.h"

#include "host/files/paths.h"
#include "host/report/reading/common_columns.h"
#include "host/report/reading/counter.h"
#include "host/report/reading/kept_lines.h"
#include "host/text/json_text.h"
#include "host/text/raw_json.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

/** Reads wal_changes.jsonl, and wal_changes.json as earlier versions wrote it. */
class wal_change_reader
{
public:
    wal_change_reader(const report_source &of_source, const note_list &of_case,
                      const std::function<void(const wal_change &change)> &taker)
        : source(of_source)
        , notes(of_case)
        , take(taker)
    {
    }

    void read(const kept_line &line)
    {
        if (!line.raw.contains("change"))
            return;
        const QJsonObject &named = line.raw.contains("result_table") ? line.json : table;
        const auto text = [&named](QLatin1StringView member) { return bytes_of_json(named.value(member)); };
        take({source,
              text("result_table"_L1),
              {text("file"_L1), text("table"_L1), line.number("rowid"_L1), {}, {}},
              line.bytes("change"_L1),
              line.raw_value("before"),
              line.raw_value("after"),
              notes_on(line)});
    }

    /** The earlier form: one document, of which each change is a line, and so is the start of each table. */
    bool read_earlier(QByteArrayView line)
    {
        if (line.startsWith(']') || line.startsWith("{\"format\":"))
            return true;
        if (line.startsWith("{\"result_table\":")) {
            table = QJsonDocument::fromJson(line.toByteArray() + "]}").object();
            return !table.isEmpty();
        }
        const QByteArrayView change = line.endsWith(',') ? line.chopped(1) : line;
        const auto members = raw_json_members(change);
        if (members)
            read({change, *members, QJsonDocument::fromJson(change.toByteArray()).object()});
        return members.has_value();
    }

private:
    notes_of_one notes_on(const kept_line &line) const
    {
        QByteArrayList names;
        for (const QLatin1StringView row : {"before"_L1, "after"_L1}) {
            for (const QLatin1StringView column : {"Uuid"_L1, "Address"_L1, "ResolvedAddress"_L1})
                names.append(bytes_of_json(line.json.value(row).toObject().value(column)));
        }
        return notes.of_device(names);
    }

    const report_source &source;
    const note_list &notes;
    const std::function<void(const wal_change &change)> &take;
    QJsonObject table; ///< of the changes that follow, in the earlier form
};

} // namespace

QByteArray wal_change::changed_values() const
{
    const auto old_values = raw_json_members(before);
    const auto new_values = raw_json_members(after);
    const QJsonObject names = QJsonDocument::fromJson(after).object();
    if (!old_values || !new_values)
        return {};
    QByteArray json = "{";
    for (const QString &name : names.keys()) {
        const QByteArray column = name.toUtf8();
        if (old_values->value(column) == new_values->value(column))
            continue;
        json += json.size() > 1 ? "," : "";
        append_json_bytes(json, column);
        json += ':' + new_values->value(column).toByteArray();
    }
    return json + '}';
}

counter_pair wal_change::counters_after() const
{
    const QJsonObject row = QJsonDocument::fromJson(after).object();
    const auto counter = [&row](QLatin1StringView name) {
        const QJsonValue value = row.value(name);
        return counter_of(value.isDouble() ? cell::of_integer(value.toInteger()) : cell::of_text(bytes_of_json(value)));
    };
    return {counter("LastSeenTime"_L1), counter("LastConnectionTime"_L1)};
}

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
        + place_columns<wal_change>() + note_columns<wal_change>();
    // clang-format on
    return columns;
}

QString for_each_wal_change(const report_case &the_case, const report_source &source,
                            const std::function<void(const wal_change &change)> &take)
{
    if (source.is_locked)
        return {};
    const source_layout layout = the_case.layout.source(source.record.number);
    wal_change_reader reader(source, *the_case.notes, take);
    if (path_exists(layout.wal_changes()))
        return for_each_kept_line(layout.wal_changes(), [&](const kept_line &line) { reader.read(line); });
    return for_each_text_line(layout.earlier_wal_changes(),
                              [&](QByteArrayView line) { return reader.read_earlier(line); });
}
