// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/list_files.h"

#include "host/case/result_tables.h"
#include "host/files/new_file.h"
#include "host/report/reading/row_columns.h"
#include "host/report/tables/case_lists.h"
#include "host/report/tables/json_lines.h"
#include "host/report/tables/shared_devices.h"
#include "host/report/tables/source_list.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView shared_name("shared");
constexpr QLatin1StringView timeline_name("timeline");

bool has_file(const case_list &list, const program_format &format)
{
    return list.is_separated || format.separator == 0;
}

/** A list of a report, in one format, in its file. */
class list_file
{
public:
    list_file(const report_options &options, const program_format &format, QLatin1StringView list,
              const QList<report_column> &columns, changed_cells &changes)
        : file(options.output + u'/' + list + format.suffix)
        , objects(columns)
    {
        if (format.separator != 0)
            cells = std::make_unique<separated_file>([this](QByteArrayView bytes) { file.add(bytes); },
                                                     list + format.suffix, form_of(format, options.cells), columns,
                                                     changes);
    }

    void add(const line_cells &line)
    {
        if (cells)
            cells->add(line);
        else
            file.add(objects.line_of(line));
    }

    void commit()
    {
        file.commit();
    }

private:
    new_file file;
    json_objects objects;
    std::unique_ptr<separated_file> cells; ///< none: JSON Lines
};

void write_shared(const report_options &options, const program_format &format, const report_case &the_case,
                  const QList<joined_device> &devices, changed_cells &changes)
{
    if (format.separator == 0) {
        new_file file(options.output + u'/' + shared_name + format.suffix);
        for_each_shared_device(the_case, devices, [&file](QByteArrayView line) { file.add(line); });
        file.commit();
        return;
    }
    list_file file(options, format, shared_name, columns_of(shared_columns()), changes);
    for_each_shared_appearance(the_case, devices, [&file](const line_cells &line) { file.add(line); });
    file.commit();
}

QStringList write_lists(const report_options &options, const program_format &format, const report_case &the_case,
                        changed_cells &changes)
{
    QStringList problems;
    for (const case_list &list : case_lists(the_case)) {
        if (!has_file(list, format))
            continue;
        list_file file(options, format, list.name, list.columns, changes);
        problems += list.read([&file](const line_cells &line) { file.add(line); });
        file.commit();
    }
    return problems;
}

} // namespace

QStringList program_file_names(const report_options &options, const report_case &the_case)
{
    QStringList names;
    for (const program_format &format : program_formats) {
        if (!options.formats.contains(format.format))
            continue;
        for (const QString &table : result_tables())
            names.append(table + format.suffix);
        names.append(shared_name + format.suffix);
        for (const case_list &list : case_lists(the_case)) {
            if (has_file(list, format))
                names.append(list.name + format.suffix);
        }
    }
    return names;
}

QStringList write_list_files(const report_options &options, const report_case &the_case,
                             const QList<joined_device> &devices, changed_cells &changes)
{
    QStringList problems;
    for (const program_format &format : program_formats) {
        if (!options.formats.contains(format.format))
            continue;
        write_shared(options, format, the_case, devices, changes);
        problems += write_lists(options, format, the_case, changes);
    }
    return problems;
}

void write_timeline_files(const report_options &options, const timeline &events, changed_cells &changes)
{
    for (const program_format &format : program_formats) {
        if (format.format == report_format::tsv)
            continue;
        list_file file(options, format, timeline_name, columns_of(timeline_columns()), changes);
        for (const timeline_event &event : events.events)
            file.add(cells_of(timeline_columns(), event));
        file.commit();
    }
}

void begin_store(table_store &store, const report_case &the_case)
{
    store.begin_table(u"sources"_s, columns_of(source_list_columns()));
    for_each_source(the_case, [&store](const line_cells &line) { store.add(line); });
}

row_writer make_store_writer(const std::vector<table_store *> &stores, const QString &table, const QStringList &columns)
{
    const auto cells = std::make_shared<row_cells>(columns);
    for (table_store *store : stores)
        store->begin_table(table, cells->columns());
    return [cells, stores](const report_row &row) {
        const line_cells &line = cells->of(row);
        for (table_store *store : stores)
            store->add(line);
    };
}

QStringList finish_store(table_store &store, const report_case &the_case, const QList<joined_device> &devices,
                         const timeline &events)
{
    QStringList problems;
    const line_taker add = [&store](const line_cells &line) { store.add(line); };
    store.begin_table(shared_name, columns_of(shared_columns()));
    for_each_shared_appearance(the_case, devices, add);
    for (const case_list &list : case_lists(the_case)) {
        store.begin_table(list.name, list.columns);
        problems += list.read(add);
    }
    store.begin_table(timeline_name, columns_of(timeline_columns()));
    for (const timeline_event &event : events.events)
        store.add(cells_of(timeline_columns(), event));
    store.commit();
    return problems;
}
