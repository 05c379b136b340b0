// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/report_files.h"

#include "host/case/result_tables.h"
#include "host/files/file_removal.h"
#include "host/files/folder_listing.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/new_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"
#include "host/report/join/other_appearances.h"
#include "host/report/list_files.h"
#include "host/report/page/html_page.h"
#include "host/report/report_readme.h"
#include "host/report/report_record.h"
#include "host/report/tables/report_database.h"
#include "host/report/tables/workbook.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView readme_name("README.txt");
constexpr QLatin1StringView database_name("report.sqlite");
constexpr QLatin1StringView workbook_name("report.xlsx");
constexpr QLatin1StringView page_name("report.html");
constexpr QLatin1StringView brief_name("brief.html");
constexpr qint64 most_rows_of_a_page = 200000;
constexpr qint64 most_page_bytes = qint64(1) << 32;

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
        , the_case(read_report_case(given.case_directory))
    {
        outcome.shortcomings = the_case.shortcomings;
        const counted_rows counted = row_count(the_case);
        add_shortcomings(counted.problems);
        is_split = given.split || counted.rows > most_rows_of_a_page;
        if (!given.vendors.isEmpty())
            the_case.vendors = vendor_list(given.vendors);
    }

    report_outcome write()
    {
        plan_files();
        refuse_output();
        make_folder(options.output);
        begin_stores();
        html_page page(the_case);
        for (const QString &table : result_tables())
            write_table(table, page);
        learn_other_appearances();
        const QList<joined_device> devices = read_devices();
        add_shortcomings(write_list_files(options, the_case, devices, changes));
        write_case_files(devices);
        if (has_any_program_format())
            write_whole_file(path_of(readme_name), readme(the_case, options, changes, outcome.notes));
        if (has(report_format::html)) {
            remove_earlier_pages();
            write_pages(page, devices);
        }
        if (options.brief)
            write_brief(page, devices);
        add_shortcomings(page.problems());
        write_report_record(options.output, the_case.manifest_sha256, outcome.files);
        outcome.files.append(report_record_name);
        return outcome;
    }

private:
    bool has(report_format format) const
    {
        return options.formats.contains(format);
    }

    bool has_any_program_format() const
    {
        return has(report_format::timeline)
               || std::any_of(std::begin(program_formats), std::end(program_formats),
                              [this](const program_format &format) { return has(format.format); });
    }

    /** Whether all devices are to be numbered: pages and the brief report name them. */
    bool has_pages() const
    {
        return has(report_format::html) || options.brief;
    }

    bool is_one_page() const
    {
        return has_pages() && !is_split;
    }

    QString path_of(const QString &name) const
    {
        return options.output + u'/' + name;
    }

    void plan_files()
    {
        outcome.files = program_file_names(options, the_case);
        if (has(report_format::timeline))
            outcome.files << u"timeline.csv"_s << u"timeline.jsonl"_s;
        if (has(report_format::sqlite))
            outcome.files.append(database_name);
        if (has(report_format::xlsx))
            outcome.files.append(workbook_name);
        if (has_any_program_format())
            outcome.files.append(readme_name);
        if (has(report_format::html))
            outcome.files.append(page_name);
        if (options.brief)
            outcome.files.append(brief_name);
        if (has(report_format::html) && is_split)
            outcome.files += source_pages();
    }

    QStringList source_pages() const
    {
        QStringList names;
        for (const report_source &source : the_case.sources)
            names.append(u"report-source"_s + QString::number(source.record.number) + u".html"_s);
        return names;
    }

    void refuse_output() const
    {
        for (const QString &folder : folders_of({options.output + u'/'})) {
            if (path_exists(folder) && !is_folder(folder))
                throw host_error(error_kind::refused,
                                 folder + u" is a link or no folder: no report is written there"_s);
        }
        for (const report_source &source : the_case.sources) {
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
        if (!problem.isEmpty())
            add_shortcomings({source.problem_text(problem)});
    }

    void add_shortcomings(const QStringList &texts)
    {
        for (const QString &text : texts) {
            if (!outcome.shortcomings.contains(text))
                outcome.shortcomings.append(text);
        }
    }

    void write_table(const QString &table, html_page &page)
    {
        std::vector<std::shared_ptr<new_file>> files;
        std::vector<row_writer> writers;
        const column_names columns = result_columns(the_case, table);
        add_shortcomings(columns.problems);
        for (const program_format &format : program_formats) {
            if (!has(format.format))
                continue;
            files.push_back(open_file(path_of(table + format.suffix)));
            writers.push_back(
                make_row_writer(format, options.cells, columns.names, table, sink_of(files.back()), changes));
        }
        if (!stores.empty())
            writers.push_back(make_store_writer(stores_in_work(), table, columns.names));
        for (qsizetype i = 0; i < the_case.sources.size(); ++i) {
            const report_source &source = the_case.sources.at(i);
            const auto take = [&](const report_row &row) {
                counters += (row.rank_last_seen ? 1 : 0) + (row.rank_last_connection ? 1 : 0);
                for (const row_writer &write_row : writers)
                    write_row(row);
                if (is_one_page())
                    page.add(row);
                else if (has_pages())
                    page.count(row);
                if (needs_join())
                    join.learn(appearance_of(row, int(i)));
            };
            const bool only_counts = writers.empty() && !has_pages() && !needs_join();
            const table_reading reading = read_rows(the_case, source, table, take,
                                                    only_counts ? reading_depth::counters : reading_depth::everything);
            add_shortcoming(source, reading.problem);
        }
        for (const std::shared_ptr<new_file> &file : files)
            file->commit();
    }

    /** Rows come first: what else a source knows of a device comes behind them. */
    void learn_other_appearances()
    {
        if (!needs_join())
            return;
        for (int i = 0; i < int(the_case.sources.size()); ++i) {
            const QString problem = for_each_other_appearance(the_case, i, [this](const device_appearance &appearance) {
                join.learn(appearance);
            });
            add_shortcoming(the_case.sources.at(i), problem);
        }
    }

    /** One source has nothing to share. */
    bool needs_join() const
    {
        return the_case.sources.size() > 1 || has_pages();
    }

    /** Whether the first page of a case whose pages are split names its device. Of named devices only so many. */
    bool is_of_note(const device_appearance &appearance, qint64 number)
    {
        if (appearance.is_paired || !appearance.notes.isEmpty() || join.is_shared(appearance))
            return true;
        if (!is_named(appearance) || number <= last_of_first_named)
            return is_named(appearance);
        constexpr qsizetype most_named = 100;
        if (++named_so_far > most_named)
            return false;
        last_of_first_named = number;
        return true;
    }

    /** Every appearance of the case with the number of its device, source by source. */
    void for_each_appearance(const std::function<void(const device_appearance &appearance, qint64 number)> &take)
    {
        device_numbers numbers(join);
        const auto give = [&](const device_appearance &appearance) { take(appearance, numbers.next(appearance)); };
        for (int i = 0; i < int(the_case.sources.size()); ++i) {
            const report_source &source = the_case.sources.at(i);
            for (const QString &table : result_tables()) {
                const table_reading reading = read_rows(the_case, source, table,
                                                        [&](const report_row &row) { give(appearance_of(row, i)); });
                add_shortcoming(source, reading.problem);
            }
            add_shortcoming(source, for_each_other_appearance(the_case, i, give));
        }
        device_count = numbers.count();
    }

    /**
     * The devices that several sources know, and the others where all of them are shown. The rows are read again,
     * source by source: no report for programs needs more of them in memory. Where each source has a page of its own
     * they are read once more, for the devices that the first page names.
     */
    QList<joined_device> read_devices()
    {
        joined_device_list devices(join);
        if (!has_pages() && !join.is_any_shared())
            return {};
        QSet<qint64> wanted;
        for_each_appearance([&](const device_appearance &appearance, qint64 number) {
            note_number(appearance, number);
            const bool is_row_once_more = appearance.found_in == wal_deleted;
            if (!is_row_once_more && (is_one_page() || (!has_pages() && join.is_shared(appearance))))
                devices.add(appearance, number);
            else if (has_pages() && is_of_note(appearance, number))
                wanted.insert(number);
        });
        if (has_pages() && is_split)
            for_each_appearance([&](const device_appearance &appearance, qint64 number) {
                if (appearance.found_in != wal_deleted && wanted.contains(number))
                    devices.add(appearance, number);
            });
        QList<joined_device> result = devices.devices();
        number_shared(result);
        return result;
    }

    /** Keeps what pages need of it. */
    void note_number(const device_appearance &appearance, qint64 number)
    {
        if (!has_pages())
            return;
        is_number_named.resize(std::max(is_number_named.size(), std::size_t(number) + 1));
        if (is_named(appearance))
            is_number_named[std::size_t(number)] = true;
        if (appearance.found_in == "row"_L1)
            device_of_row[appearance.source][appearance.table].push_back(number);
        else if (appearance.line >= 0)
            number_line(device_of_row[appearance.source][list_of(appearance)], appearance.line, number);
    }

    /** Both sides of a changed row are one line. */
    static void number_line(std::vector<qint64> &numbers, qsizetype line, qint64 number)
    {
        numbers.resize(std::max(numbers.size(), std::size_t(line) + 1));
        numbers[std::size_t(line)] = number;
    }

    static QString list_of(const device_appearance &appearance)
    {
        return appearance.found_in.startsWith("wal_"_L1) ? wal_changes_list : host_devices_list;
    }

    /** The formats that hold times, or whole cases. */
    void write_case_files(const QList<joined_device> &devices)
    {
        if (!has(report_format::timeline) && !has(report_format::sqlite) && !has(report_format::xlsx))
            return;
        const timeline events = read_timeline(the_case, options.times, counters);
        add_shortcomings(events.problems);
        outcome.notes += events.left_out_texts();
        if (has(report_format::timeline))
            write_timeline_files(options, events, changes);
        for (const std::unique_ptr<table_store> &store : stores)
            add_shortcomings(finish_store(*store, the_case, devices, events));
        if (book_notes.spelled > 0)
            outcome.notes.append(u"report.xlsx: "_s + QString::number(book_notes.spelled)
                                 + u" texts have \\u{0}, \\u{fffe} or \\u{ffff} for characters that no cell takes"_s);
        if (book_notes.cut > 0)
            outcome.notes.append(u"report.xlsx: "_s + QString::number(book_notes.cut)
                                 + u" texts are cut: no cell takes more than 32,767 characters"_s);
    }

    /** The files that hold the whole case: they take each row when it is read for the others. */
    void begin_stores()
    {
        if (has(report_format::sqlite))
            stores.push_back(std::make_unique<report_database>(path_of(database_name)));
        if (has(report_format::xlsx))
            stores.push_back(make_workbook(path_of(workbook_name), book_notes));
        for (const std::unique_ptr<table_store> &store : stores)
            begin_store(*store, the_case);
    }

    std::vector<table_store *> stores_in_work() const
    {
        std::vector<table_store *> list;
        for (const std::unique_ptr<table_store> &store : stores)
            list.push_back(store.get());
        return list;
    }

    /** Pages of sources that this report has not: beside its own they would pass for them. */
    void remove_earlier_pages() const
    {
        static const QRegularExpression form(u"^report-source\\d+\\.html$"_s);
        for (const QString &name : names_in(options.output)) {
            if (options.force && form.match(name).hasMatch() && !outcome.files.contains(name))
                remove_file(path_of(name));
        }
    }

    void write_pages(html_page &page, const QList<joined_device> &devices)
    {
        if (!is_split) {
            const row_devices numbers = devices_of_rows();
            page.write(path_of(page_name), content_of(devices, numbers));
            return;
        }
        QHash<qint64, qint64> shared_numbers;
        for (const joined_device &device : devices)
            shared_numbers.insert(device.number, device.shared_number);
        const QStringList names = source_pages();
        for (int i = 0; i < names.size(); ++i)
            write_source_page(i, path_of(names.at(i)), shared_numbers);
        const row_devices numbers = devices_of_rows();
        page.write_index(path_of(page_name), content_of(devices, numbers), names);
    }

    /** Of the whole case. */
    page_content content_of(const QList<joined_device> &devices, const row_devices &numbers) const
    {
        return {devices,
                numbers,
                outcome.shortcomings,
                is_all_compared(),
                device_count,
                qint64(std::count(is_number_named.cbegin(), is_number_named.cend(), true))};
    }

    /** Every row, write-ahead log and list of every source. */
    bool is_all_compared() const
    {
        return outcome.shortcomings.isEmpty()
               && std::all_of(the_case.sources.cbegin(), the_case.sources.cend(), [](const report_source &source) {
                      const QJsonObject logs = source.record.wal.toObject();
                      return std::none_of(logs.constBegin(), logs.constEnd(),
                                          [](const QJsonValue &log) { return log.isNull(); });
                  });
    }

    void write_brief(html_page &page, const QList<joined_device> &devices) const
    {
        const bool has_annex = has(report_format::html);
        const row_devices numbers = devices_of_rows();
        page.write_brief(path_of(brief_name), content_of(devices, numbers),
                         has_annex ? sha256::of(read_whole_file(path_of(page_name), most_page_bytes)) : QString());
    }

    row_devices devices_of_rows() const
    {
        row_devices numbers;
        for (const row_devices &of_source : device_of_row) {
            for (auto table = of_source.constBegin(); table != of_source.constEnd(); ++table)
                numbers[table.key()].insert(numbers[table.key()].end(), table->cbegin(), table->cend());
        }
        return numbers;
    }

    /** The page of one source, whose rows are read again: no more than one source is held. */
    void write_source_page(int place, const QString &path, const QHash<qint64, qint64> &shared_numbers)
    {
        report_case part = the_case;
        part.sources = {the_case.sources.at(place)};
        part.shortcomings.clear();
        const row_devices numbers = device_of_row.value(place);
        html_page page(part);
        joined_device_list list(join);
        for (const QString &table : result_tables()) {
            std::size_t next = 0;
            const std::vector<qint64> of_table = numbers.value(table);
            const table_reading reading = read_rows(part, part.sources.first(), table, [&](const report_row &row) {
                page.add(row);
                list.add(appearance_of(row, 0), next < of_table.size() ? of_table[next++] : 0);
            });
            if (!reading.problem.isEmpty())
                part.shortcomings.append(reading.problem);
            add_shortcoming(part.sources.first(), reading.problem);
        }
        const std::vector<qint64> of_changes = numbers.value(wal_changes_list);
        const std::vector<qint64> of_lists = numbers.value(host_devices_list);
        const QString problem = for_each_other_appearance(part, 0, [&](const device_appearance &appearance) {
            const std::vector<qint64> &known = list_of(appearance) == wal_changes_list ? of_changes : of_lists;
            const auto line = std::size_t(appearance.line); // -1 is beyond every list
            if (appearance.found_in != wal_deleted && line < known.size())
                list.add(appearance, known[line]);
        });
        if (!problem.isEmpty())
            part.shortcomings.append(part.sources.first().problem_text(problem));
        add_shortcoming(part.sources.first(), problem);
        QList<joined_device> devices = list.devices();
        std::sort(devices.begin(), devices.end(),
                  [](const joined_device &one, const joined_device &two) { return one.number < two.number; });
        for (joined_device &device : devices)
            device.shared_number = shared_numbers.value(device.number);
        const auto named = std::count_if(devices.cbegin(), devices.cend(), is_device_named);
        page.write_source(path,
                          {devices, numbers, part.shortcomings, is_all_compared(), qint64(devices.size()),
                           qint64(named)},
                          page_name);
        add_shortcomings(page.problems());
    }

    static bool is_device_named(const joined_device &device)
    {
        return std::any_of(device.appearances.cbegin(), device.appearances.cend(), is_named);
    }

    const report_options &options;
    report_case the_case;
    bool is_split = false;
    report_outcome outcome;
    changed_cells changes;
    qint64 counters = 0;       ///< of all rows; a timeline leaves them out
    workbook_notes book_notes; ///< outlives the workbook
    std::vector<std::unique_ptr<table_store>> stores;
    device_join join;
    QMap<qsizetype, row_devices> device_of_row; ///< by place of the source; for pages
    qint64 device_count = 0;                    ///< of the whole case
    std::vector<bool> is_number_named;          ///< by number of a device
    qint64 named_so_far = 0;
    qint64 last_of_first_named = 0;
};

} // namespace

report_outcome write_report(const report_options &options)
{
    return report_writer(options).write();
}
