// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/report_files.h"

#include "host/case/result_tables.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/paths.h"
#include "host/report/html_page.h"
#include "host/report/json_lines.h"
#include "host/report/separated_files.h"
#include "host/report/shared_devices.h"

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/** One of the two formats of separated values. */
struct separated_format
{
    report_format format;
    QLatin1StringView suffix;
    char separator;
};

constexpr separated_format separated_formats[] = {
    {report_format::csv, ".csv"_L1, ','},
    {report_format::tsv, ".tsv"_L1, '\t'},
};

constexpr QLatin1StringView readme_name("README.txt");
constexpr QLatin1StringView shared_name("shared");
constexpr QLatin1StringView wal_changes_name("wal_changes.jsonl");
constexpr QLatin1StringView page_name("report.html");
constexpr QLatin1StringView lines_suffix(".jsonl");
constexpr qint64 most_rows_of_a_page = 100000;

/** What README.txt says of the files of separated values. */
QByteArray readme(const separated_form &form, const changed_cells &changes)
{
    QByteArray text = "The files devices, paired_devices and shared hold texts that strangers chose. RFC 4180, UTF-8";
    text += form.has_mark ? " with a byte order mark" : "";
    text += ", line ends CRLF; NULL and an empty text are both an empty cell.\n\n";
    text += form.is_raw ? "Texts stand as they are (--raw-cells). A spreadsheet runs those that start with = + - or @ "
                          "as formulas: open these files with programs that do not.\n\n"
                        : "A text that a spreadsheet would run as a formula has an apostrophe (') in front that is "
                          "not part of it: those whose first character, after blanks and unseen characters, is one of "
                          "= + - @, also full-width, and those that start with a tab or a line end. Numbers stay as "
                          "they are. --raw-cells leaves the apostrophe out.\n\n";
    text += "A value that is no text (a blob, or bytes that are no UTF-8) stands as x'00ff', its bytes in "
            "hexadecimal.\n\n";
    text += "Excel shows at most 1,048,576 rows and 32,767 characters of a cell, rounds numbers to 15 digits and may "
            "take a text for a date: import columns as text. The files in JSON Lines (-f jsonl) are exact.\n\n";
    text += "Changed cells: " + QByteArray::number(changes.count) + '\n';
    if (changes.count > changes.named.size())
        text += "The first " + QByteArray::number(changes.named.size()) + " of them:\n";
    for (const changed_cell &cell : changes.named)
        text += cell.file.toUtf8() + ", row " + QByteArray::number(cell.line) + ", " + cell.column.toUtf8()
                + (cell.change == cell_change::apostrophe ? ": apostrophe\n" : ": hexadecimal\n");
    return text;
}

class report_writer
{
public:
    explicit report_writer(const report_options &given)
        : options(given)
        , that_case(read_report_case(given.case_directory))
    {
        outcome.shortcomings = that_case.shortcomings;
        if (!given.vendors.isEmpty())
            that_case.vendors = vendor_list(given.vendors);
    }

    report_outcome write()
    {
        plan_files();
        refuse_output();
        make_folder(options.output);
        html_page page(that_case);
        for (const QString &table : result_tables())
            write_table(table, page);
        const QList<joined_device> devices = join.devices();
        write_shared(devices);
        if (has(report_format::jsonl))
            write_wal_changes();
        if (has(report_format::csv) || has(report_format::tsv))
            write_whole_file(options.output + u'/' + readme_name, readme(form_of(','), changes));
        if (has(report_format::html) && !is_split())
            page.write(options.output + u'/' + page_name, join, devices, outcome.shortcomings);
        if (has(report_format::html) && is_split())
            write_pages(page, devices);
        return outcome;
    }

private:
    bool has(report_format format) const
    {
        return options.formats.contains(format);
    }

    separated_form form_of(char separator) const
    {
        return {separator, options.raw_cells, options.csv_bom};
    }

    void plan_files()
    {
        QStringList stems = result_tables();
        stems.append(shared_name);
        for (const separated_format &format : separated_formats) {
            for (const QString &stem : stems) {
                if (has(format.format))
                    outcome.files.append(stem + format.suffix);
            }
        }
        if (!outcome.files.isEmpty())
            outcome.files.append(readme_name);
        if (has(report_format::jsonl)) {
            for (const QString &stem : stems)
                outcome.files.append(stem + lines_suffix);
            outcome.files.append(wal_changes_name);
        }
        if (has(report_format::html))
            outcome.files.append(page_name);
        if (has(report_format::html) && is_split())
            outcome.files += source_pages();
    }

    bool is_split() const
    {
        qint64 rows = 0;
        for (const report_source &source : that_case.sources) {
            for (const table_rows &table : source.record.rows)
                rows += table.stored.value_or(0);
        }
        return options.split || rows > most_rows_of_a_page;
    }

    QStringList source_pages() const
    {
        QStringList names;
        for (const report_source &source : that_case.sources)
            names.append(u"report-source"_s + QString::number(source.record.number) + u".html"_s);
        return names;
    }

    /** The index, and a page for each source, whose rows are read again: no more than one source is held. */
    void write_pages(const html_page &index, const QList<joined_device> &devices)
    {
        const QStringList names = source_pages();
        for (qsizetype i = 0; i < names.size(); ++i) {
            report_case part{that_case.layout,          that_case.heading, that_case.manifest_sha256,
                             {that_case.sources.at(i)}, that_case.vendors, {}};
            html_page page(part);
            for (const QString &table : result_tables()) {
                const table_reading reading = read_rows(part, part.sources.first(), table,
                                                        [&page](const report_row &row) { page.add(row); });
                if (!reading.problem.isEmpty())
                    part.shortcomings.append(reading.problem);
            }
            page.write_source(options.output + u'/' + names.at(i), page_name);
        }
        index.write_index(options.output + u'/' + page_name, join, devices, outcome.shortcomings, names);
    }

    void refuse_output() const
    {
        for (const report_source &source : that_case.sources) {
            if (!source.record.path.isEmpty() && is_inside(options.output, source.record.path))
                throw host_error(exit_code::usage, u"the report's folder lies in the evidence: "_s + options.output
                                                       + u" is inside "_s + source.record.path);
        }
        QStringList present;
        for (const QString &name : outcome.files) {
            if (path_exists(options.output + u'/' + name))
                present.append(options.output + u'/' + name);
        }
        if (!present.isEmpty() && !options.force)
            throw host_error(exit_code::usage,
                             u"these files are there already, --force replaces them: "_s + present.join(u", "_s));
    }

    /** The columns of a table in all sources: those of the first source in their order, others' behind. */
    QStringList all_columns(const QString &table) const
    {
        QStringList columns;
        for (const report_source &source : that_case.sources) {
            const QStringList own = result_columns(that_case, source, table);
            std::copy_if(own.cbegin(), own.cend(), std::back_inserter(columns),
                         [&columns](const QString &name) { return !columns.contains(name); });
        }
        return columns;
    }

    void write_table(const QString &table, html_page &page)
    {
        std::vector<std::unique_ptr<separated_rows>> cells;
        for (const separated_format &format : separated_formats) {
            if (has(format.format))
                cells.push_back(std::make_unique<separated_rows>(options.output, table + format.suffix,
                                                                 form_of(format.separator), all_columns(table),
                                                                 changes));
        }
        std::unique_ptr<new_file> lines;
        if (has(report_format::jsonl))
            lines = std::make_unique<new_file>(options.output + u'/' + table + lines_suffix);
        json_lines json;
        const bool is_one_page = has(report_format::html) && !is_split();
        for (qsizetype i = 0; i < that_case.sources.size(); ++i) {
            qint64 index = 0;
            const table_reading reading = read_rows(that_case, that_case.sources.at(i), table,
                                                    [&](const report_row &row) {
                                                        for (const auto &file : cells)
                                                            file->add(row);
                                                        if (lines)
                                                            lines->add(json.line(row));
                                                        if (is_one_page)
                                                            page.add(row);
                                                        if (needs_join())
                                                            join.add(row, int(i), index++);
                                                    });
            if (!reading.problem.isEmpty())
                outcome.shortcomings.append(u"source "_s + QString::number(that_case.sources.at(i).record.number)
                                            + u": "_s + reading.problem);
        }
        for (const auto &file : cells)
            file->commit();
        if (lines)
            lines->commit();
    }

    /** One source has nothing to share, and may have a million rows. */
    bool needs_join() const
    {
        return that_case.sources.size() > 1 || has(report_format::html);
    }

    void write_shared(const QList<joined_device> &devices)
    {
        for (const separated_format &format : separated_formats) {
            if (has(format.format))
                write_shared_cells(that_case, join, devices, options.output, shared_name + format.suffix,
                                   form_of(format.separator), changes);
        }
        if (has(report_format::jsonl))
            write_shared_lines(that_case, join, devices, options.output + u'/' + shared_name + lines_suffix);
    }

    void write_wal_changes()
    {
        new_file file(options.output + u'/' + wal_changes_name);
        for (const report_source &source : that_case.sources)
            tell_wal_changes(that_case, source, [&file](QByteArrayView line) { file.add(line); });
        file.commit();
    }

    const report_options &options;
    report_case that_case;
    report_outcome outcome;
    changed_cells changes;
    device_join join;
};

} // namespace

report_outcome write_report(const report_options &options)
{
    return report_writer(options).write();
}
