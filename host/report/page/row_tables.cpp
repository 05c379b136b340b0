// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/row_tables.h"

#include "host/report/page/column_words.h"
#include "host/report/reading/wal_change.h"

using namespace Qt::StringLiterals;

namespace {

struct table_words
{
    QLatin1StringView table;
    const char *id;
    const char *heading;
    const char *caption;
};

constexpr table_words known_tables[] = {
    {"devices"_L1, "devices", "Devices seen (devices)",
     "Each row of the result table \"devices\" as the plug-in wrote it, with the host's own reading of the evidence "
     "beside it. Rows of logs are sightings."},
    {"paired_devices"_L1, "paired-devices", "Devices paired or in use (paired_devices)",
     "Each row of the result table \"paired_devices\" as the plug-in wrote it, with the host's own reading of the "
     "evidence "
     "beside it. Rows of logs are \"active device\" notices."},
};

const table_words &words_of(const QString &table)
{
    return table == known_tables[1].table ? known_tables[1] : known_tables[0];
}

cell value_in(const sqlite_statement &row, QLatin1StringView column)
{
    const int place = row.column_named(column);
    return place < 0 ? cell() : row.value_of(place);
}

} // namespace

row_table::row_table(const report_case &that_case, const QString &name)
    : table(words_of(name).id, words_of(name).heading, words_of(name).caption)
    , cells(result_columns(that_case, name).names)
{
    device = &table.add_column(about_own_column("device"));
    const QList<report_column> &list = cells.columns();
    columns.resize(std::size_t(list.size()));
    for (const bool is_place : {false, true}) { // the place stands last
        for (qsizetype i = 0; i < list.size(); ++i) {
            if (list.at(i).is_cell() && (list.at(i).group == column_group::locator) == is_place)
                columns[std::size_t(i)] = &table.add_column(about_column(list.at(i)));
        }
    }
}

void row_table::add(const report_row &row)
{
    const line_cells &values = cells.of(row);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i])
            columns[i]->add(values[i]);
    }
    if (!row.host.differs.is_null())
        ++differing;
    add_sighting(row);
}

void row_table::add_sighting(const report_row &row)
{
    const cell date = value_in(row.plugin, "date"_L1);
    times.add(row.source, date, row.host.rssi);
    if (date.is_null())
        return;
    ++sightings;
    for (const QLatin1StringView column : {"sf_device_id"_L1, "device_address"_L1, "address"_L1}) {
        const QByteArrayView identifier = value_in(row.plugin, column).bytes;
        if (!identifier.isEmpty()) {
            sighted.insert(QByteArray::number(row.source.record.number) + ' ' + identifier.toByteArray().toUpper());
            return;
        }
    }
}

void row_table::finish(const std::vector<qint64> &devices)
{
    for (const qint64 number : devices)
        device->add(number > 0 ? cell::of_integer(number) : cell());
}

html_table wal_table(const report_case &that_case, row_figures &counts)
{
    html_table table("wal-changes", "Rows that write-ahead logs change",
                     "Host reading. The plug-in's rows are those of the main file of each database; these rows are "
                     "different in the main file with its -wal.");
    std::vector<page_column *> columns;
    for (const line_column<wal_change> &column : wal_columns())
        columns.push_back(column.about.is_cell() || column.about.use == column_use::members_only
                              ? &table.add_column(about_column(column.about))
                              : nullptr);
    for (const report_source &source : that_case.sources) {
        for_each_wal_change(that_case, source, [&](const wal_change &change) {
            std::size_t place = 0;
            for (const line_column<wal_change> &column : wal_columns()) {
                if (page_column *values = columns[place++])
                    values->add(column.value(change));
            }
            qint64 &count = change.change == "added"     ? counts.added_by_logs
                            : change.change == "deleted" ? counts.deleted_by_logs
                                                         : counts.changed_by_logs;
            ++count;
        });
    }
    return table;
}
