// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/row_tables.h"

#include "host/report/page/column_words.h"
#include "host/report/reading/host_device_line.h"
#include "host/report/reading/salvage_line.h"
#include "host/report/reading/unparsed_line.h"
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

cell number_cell(qint64 number)
{
    return number > 0 ? cell::of_integer(number) : cell();
}

/** The number of the row's device, which leads to its page. */
column_about about_device()
{
    column_about about = about_own_column("device");
    about.link = "device";
    return about;
}

/** Columns of notes only where there are any. */
bool is_on_page(const report_case &the_case, const report_column &column)
{
    const bool is_note = column.name == "note" || column.name == "flag";
    return column.is_cell() && (!is_note || !the_case.notes->is_empty());
}

/** What says nothing is no value for readers: an empty list, and a flag that is not there. */
cell cell_of_page(const report_column &column, const cell &value)
{
    if (column.is_json && value.bytes == "[]")
        return {};
    if (column.name != "flag")
        return value;
    return value.bytes == "true" ? cell::of_text("flagged") : cell();
}

} // namespace

row_table::row_table(const report_case &the_case, const QString &name, const QStringList &result_columns)
    : table(words_of(name).id, words_of(name).heading, words_of(name).caption)
    , cells(result_columns)
{
    device = &table.add_column(about_device());
    const QList<report_column> &list = cells.columns();
    columns.resize(std::size_t(list.size()));
    for (const bool is_place : {false, true}) { // the place stands last
        for (qsizetype i = 0; i < list.size(); ++i) {
            if (is_on_page(the_case, list.at(i)) && (list.at(i).group == column_group::locator) == is_place)
                columns[std::size_t(i)] = &table.add_column(about_column(list.at(i)));
        }
    }
}

void row_table::add(const report_row &row)
{
    const line_cells &values = cells.of(row);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i])
            columns[i]->add(cell_of_page(cells.columns().at(qsizetype(i)), values[i]));
    }
    count(row);
}

void row_table::count(const report_row &row)
{
    if (!row.host.differs.is_null())
        ++differing;
    if (!row.host.left_out.is_null())
        ++left_out;
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
        device->add(number_cell(number));
}

namespace {

/** How a list of the case stands on the page. */
struct list_words
{
    const char *id;
    const char *heading;
    const char *caption;
};

constexpr list_words wal_words{"wal-changes", "Rows that write-ahead logs change",
                               "Host reading. The plug-in's rows are those of the main file of each database; these "
                               "rows are different in the main "
                               "file with its -wal. \"added\": only in the log."};
constexpr list_words
    host_device_words{"host-devices", "Devices in lists (host_devices)",
                      "Host reading of lists that are no databases: property lists, Windows' registry. None of it is "
                      "in the plug-in's rows. "
                      "Keys of the registry's pairings are not read; that one is there is all that is said."};
constexpr list_words
    unparsed_words{"unparsed-lines", "Lines of logs that gave no row",
                   "Lines with the words of a device in a form that the plug-in does not read. They are in no result."};
constexpr list_words salvage_words{"salvage", "Salvaged rows",
                                   "Rows that the host found on intact pages of damaged databases. They are in no "
                                   "result, and no device is made of them: a "
                                   "row may be an old one."};

/** A table of all lines of a list, source by source. @p devices are the numbers of the lines' devices; null: none. */
template<typename Line>
html_table list_table(const report_case &the_case, const list_words &words, const line_columns<Line> &list,
                      QString (*for_each_line)(const report_case &, const report_source &,
                                               const std::function<void(const Line &)> &),
                      const std::vector<qint64> *devices, QStringList &problems,
                      const std::function<void(const Line &)> &look = {})
{
    html_table table(words.id, words.heading, words.caption);
    page_column *device = devices ? &table.add_column(about_device()) : nullptr;
    std::vector<page_column *> columns;
    for (const line_column<Line> &column : list)
        columns.push_back(is_on_page(the_case, column.about) ? &table.add_column(about_column(column.about)) : nullptr);
    std::size_t next = 0;
    for (const report_source &source : the_case.sources) {
        const QString problem = for_each_line(the_case, source, [&](const Line &line) {
            for (std::size_t i = 0; i < columns.size(); ++i) {
                if (columns[i])
                    columns[i]->add(cell_of_page(list.at(qsizetype(i)).about, list.at(qsizetype(i)).value(line)));
            }
            if (device)
                device->add(number_cell(next < devices->size() ? (*devices)[next] : 0));
            ++next;
            if (look)
                look(line);
        });
        if (!problem.isEmpty())
            problems.append(source.problem_text(problem));
    }
    return table;
}

} // namespace

html_table wal_table(const report_case &the_case, const std::vector<qint64> &devices, row_figures &counts,
                     QStringList &problems)
{
    return list_table<wal_change>(the_case, wal_words, wal_columns(), for_each_wal_change, &devices, problems,
                                  [&counts](const wal_change &change) {
                                      ++(change.change == "added"     ? counts.added_by_logs
                                         : change.change == "deleted" ? counts.deleted_by_logs
                                                                      : counts.changed_by_logs);
                                  });
}

html_table host_device_table(const report_case &the_case, const std::vector<qint64> &devices, QStringList &problems)
{
    return list_table<host_device_line>(the_case, host_device_words, host_device_columns(), for_each_host_device,
                                        &devices, problems);
}

html_table unparsed_table(const report_case &the_case, QStringList &problems)
{
    return list_table<unparsed_line>(the_case, unparsed_words, unparsed_columns(), for_each_unparsed_line, nullptr,
                                     problems);
}

html_table salvage_table(const report_case &the_case, QStringList &problems)
{
    return list_table<salvage_line>(the_case, salvage_words, salvage_columns(), for_each_salvaged_row, nullptr,
                                    problems);
}
