// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/report_files.h"

#include "host/case/result_tables.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/new_file.h"
#include "host/files/paths.h"
#include "host/report/page/device_cards.h"
#include "host/report/page/html_page.h"
#include "host/report/page/html_summary.h"
#include "host/report/reading/wal_change.h"
#include "host/report/report_readme.h"
#include "host/report/tables/evidence_list.h"
#include "host/report/tables/json_lines.h"
#include "host/report/tables/shared_devices.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView readme_name("README.txt");
constexpr QLatin1StringView shared_name("shared");
constexpr QLatin1StringView evidence_name("evidence_files");
constexpr QLatin1StringView wal_changes_name("wal_changes.jsonl");
constexpr QLatin1StringView page_name("report.html");
constexpr qint64 most_rows_of_a_page = 100000;

/** A file of the report that is written piece by piece. */
std::shared_ptr<new_file> open_file(const QString &path)
{
    return std::make_shared<new_file>(path);
}

byte_sink sink_of(const std::shared_ptr<new_file> &file)
{
    return [file](QByteArrayView bytes) { file->add(bytes); };
}

class report_writer
{
public:
    explicit report_writer(const report_options &given)
        : options(given)
        , that_case(read_report_case(given.case_directory))
        , is_split(given.split || row_count(that_case) > most_rows_of_a_page)
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
        const QList<joined_device> devices = read_devices();
        for (const program_format &format : program_formats) {
            if (has(format.format))
                write_lists(format, devices);
        }
        if (has(report_format::jsonl))
            write_wal_changes();
        if (has_any_program_format())
            write_whole_file(path_of(readme_name), readme(that_case, options, changes));
        if (has(report_format::html)) {
            remove_earlier_pages();
            write_pages(page, devices);
        }
        return outcome;
    }

private:
    bool has(report_format format) const
    {
        return options.formats.contains(format);
    }

    bool has_any_program_format() const
    {
        return std::any_of(std::begin(program_formats), std::end(program_formats),
                           [this](const program_format &format) { return has(format.format); });
    }

    bool is_one_page() const
    {
        return has(report_format::html) && !is_split;
    }

    QString path_of(const QString &name) const
    {
        return options.output + u'/' + name;
    }

    void plan_files()
    {
        for (const program_format &format : program_formats) {
            if (!has(format.format))
                continue;
            for (const QString &table : result_tables())
                outcome.files.append(table + format.suffix);
            outcome.files << shared_name + format.suffix << evidence_name + format.suffix;
        }
        if (has(report_format::jsonl))
            outcome.files.append(wal_changes_name);
        if (has_any_program_format())
            outcome.files.append(readme_name);
        if (has(report_format::html))
            outcome.files.append(page_name);
        if (has(report_format::html) && is_split)
            outcome.files += source_pages();
    }

    QStringList source_pages() const
    {
        QStringList names;
        for (const report_source &source : that_case.sources)
            names.append(u"report-source"_s + QString::number(source.record.number) + u".html"_s);
        return names;
    }

    void refuse_output() const
    {
        for (const report_source &source : that_case.sources) {
            if (!source.record.path.isEmpty() && is_inside(options.output, source.record.path))
                throw host_error(error_kind::refused, u"the report's folder lies in the evidence: "_s + options.output
                                                          + u" is inside "_s + source.record.path);
        }
        QStringList present;
        for (const QString &name : outcome.files) {
            if (path_exists(path_of(name)))
                present.append(path_of(name));
        }
        if (!present.isEmpty() && !options.force)
            throw host_error(error_kind::refused,
                             u"these files are there already, --force replaces them: "_s + present.join(u", "_s));
    }

    /** Said once, whichever pass found it. */
    void add_shortcoming(const report_source &source, const QString &problem)
    {
        const QString text = source.problem_text(problem);
        if (!problem.isEmpty() && !outcome.shortcomings.contains(text))
            outcome.shortcomings.append(text);
    }

    void write_table(const QString &table, html_page &page)
    {
        std::vector<std::shared_ptr<new_file>> files;
        std::vector<row_writer> writers;
        for (const program_format &format : program_formats) {
            if (!has(format.format))
                continue;
            files.push_back(open_file(path_of(table + format.suffix)));
            writers.push_back(make_row_writer(format, options.cells, that_case, table, sink_of(files.back()), changes));
        }
        for (qsizetype i = 0; i < that_case.sources.size(); ++i) {
            const report_source &source = that_case.sources.at(i);
            const table_reading reading = read_rows(that_case, source, table, [&](const report_row &row) {
                for (const row_writer &write_row : writers)
                    write_row(row);
                if (is_one_page())
                    page.add(row);
                if (needs_join())
                    join.learn(appearance_of(row, int(i)));
            });
            add_shortcoming(source, reading.problem);
        }
        for (const std::shared_ptr<new_file> &file : files)
            file->commit();
    }

    /** One source has nothing to share. */
    bool needs_join() const
    {
        return that_case.sources.size() > 1 || has(report_format::html);
    }

    /**
     * The devices that several sources know, and the others where all of them are shown. The rows are read again:
     * no report for programs needs more of them in memory.
     */
    QList<joined_device> read_devices() const
    {
        device_list devices(join);
        if (!is_one_page() && !join.is_any_shared())
            return {};
        for (const QString &table : result_tables()) {
            for (qsizetype i = 0; i < that_case.sources.size(); ++i)
                read_rows(that_case, that_case.sources.at(i), table, [&](const report_row &row) {
                    const device_appearance appearance = appearance_of(row, int(i));
                    if (is_one_page() || join.is_shared(appearance))
                        devices.add(appearance);
                });
        }
        QList<joined_device> result = devices.devices();
        number_shared(result);
        return result;
    }

    /** The lists that are no rows of a table: shared devices, and files of the evidence. */
    void write_lists(const program_format &format, const QList<joined_device> &devices)
    {
        const QString shared = shared_name + format.suffix;
        const QString evidence = evidence_name + format.suffix;
        const auto shared_file = open_file(path_of(shared));
        const auto evidence_file = open_file(path_of(evidence));
        const byte_sink shared_sink = sink_of(shared_file);
        const byte_sink evidence_sink = sink_of(evidence_file);
        if (format.separator == 0) {
            for_each_shared_device(that_case, devices, shared_sink);
            const json_objects objects(columns_of(evidence_columns()));
            for_each_evidence_file(that_case, [&](const line_cells &cells) { evidence_sink(objects.line_of(cells)); });
        } else {
            const separated_form form = form_of(format, options.cells);
            separated_file shared_cells(shared_sink, shared, form, columns_of(shared_columns()), changes);
            for_each_shared_appearance(that_case, devices, [&](const line_cells &cells) { shared_cells.add(cells); });
            separated_file evidence_cells(evidence_sink, evidence, form, columns_of(evidence_columns()), changes);
            for_each_evidence_file(that_case, [&](const line_cells &cells) { evidence_cells.add(cells); });
        }
        shared_file->commit();
        evidence_file->commit();
    }

    void write_wal_changes()
    {
        new_file file(path_of(wal_changes_name));
        const json_objects objects(columns_of(wal_columns()));
        for (const report_source &source : that_case.sources) {
            const QString problem = for_each_wal_change(that_case, source, [&](const wal_change &change) {
                file.add(objects.line_of(cells_of(wal_columns(), change)));
            });
            add_shortcoming(source, problem);
        }
        file.commit();
    }

    /** Pages of sources that this report has not: beside its own they would pass for them. */
    void remove_earlier_pages() const
    {
        static const QRegularExpression form(u"^report-source\\d+\\.html$"_s);
        const QStringList names = QDir(options.output).entryList(QDir::Files | QDir::System | QDir::Hidden);
        for (const QString &name : names) {
            if (options.force && form.match(name).hasMatch() && !outcome.files.contains(name)
                && !QFile::remove(path_of(name)))
                throw host_error(error_kind::io, u"a page of an earlier report cannot be removed: "_s + path_of(name));
        }
    }

    void write_pages(const html_page &page, const QList<joined_device> &devices)
    {
        const QByteArray shared = shared_section(that_case, devices);
        if (!is_split) {
            page.write(path_of(page_name), device_cards(that_case, devices), shared, outcome.shortcomings);
            return;
        }
        QHash<QByteArray, qint64> shared_numbers;
        for (const joined_device &device : devices)
            shared_numbers.insert(join.device_of(device.appearances.first()), device.shared_number);
        const QStringList names = source_pages();
        for (int i = 0; i < names.size(); ++i)
            write_source_page(i, path_of(names.at(i)), shared_numbers);
        page.write_index(path_of(page_name), shared, outcome.shortcomings, names);
    }

    /** The page of one source, whose rows are read again: no more than one source is held. */
    void write_source_page(int place, const QString &path, const QHash<QByteArray, qint64> &shared_numbers) const
    {
        report_case part = that_case;
        part.sources = {that_case.sources.at(place)};
        part.shortcomings.clear();
        html_page page(part);
        device_list list(join);
        for (const QString &table : result_tables()) {
            const table_reading reading = read_rows(part, part.sources.first(), table, [&](const report_row &row) {
                page.add(row);
                list.add(appearance_of(row, place));
            });
            if (!reading.problem.isEmpty())
                part.shortcomings.append(reading.problem);
        }
        QList<joined_device> devices = list.devices();
        for (joined_device &device : devices)
            device.shared_number = shared_numbers.value(join.device_of(device.appearances.first()));
        page.write_source(path, device_cards(that_case, devices), page_name);
    }

    const report_options &options;
    report_case that_case;
    bool is_split;
    report_outcome outcome;
    changed_cells changes;
    device_join join;
};

} // namespace

report_outcome write_report(const report_options &options)
{
    return report_writer(options).write();
}
