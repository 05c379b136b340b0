// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/show_command.h"

#include "host/case/case_reservations.h"
#include "host/case/stored_source.h"
#include "host/case/wal_counts.h"
#include "host/cli/host_device_view.h"
#include "host/files/host_error.h"
#include "host/report/tables/report_table.h"
#include "host/text/count_text.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

terminal_text legend()
{
    return u"∅ is NULL, \"\" an empty text; "_s + terminal_text::escape(U'\x1b')
           + u" stands for a character that is unseen or would act on the terminal, "_s + u"\\"_s
           + u" for a backslash."_s;
}

QList<stored_source> chosen_sources(const show_options &options)
{
    QList<stored_source> sources = stored_sources(options.place);
    if (!options.source)
        return sources;
    QStringList names;
    for (const stored_source &source : std::as_const(sources)) {
        if (source.name == source_name(int(*options.source)))
            return {source};
        names.append(source.name);
    }
    throw host_error(error_kind::refused, u"the case has no Source"_s + QString::number(*options.source) + u", only "_s
                                              + names.join(u", "_s));
}

/** Prints sources one after the other, and at the end how many rows each table has. */
class source_printer
{
public:
    source_printer(const show_options &show, bool several_sources, console &console)
        : options(show)
        , has_several(several_sources)
        , out(console)
    {
    }

    void print(const stored_source &source)
    {
        if (has_several) {
            out.print_line(out.bold(source.title()));
            out.print_line({});
        }
        const result_database result(source.result_database);
        for (const QString &table : chosen_tables(result, source)) {
            const table_view view(result, table, options.most_rows);
            const qint64 rows = options.most_rows ? result.row_count(table) : view.row_count();
            counts.append(
                (has_several ? source.name + u"  "_s : QString()) + table.leftJustified(14) + u"  "_s + rows_text(rows)
                + sightings_in(source, table)
                + (rows > view.row_count() ? u", "_s + count_text(view.row_count()) + u" shown"_s : QString()));
            if (view.row_count() == 0)
                continue;
            view.print(out, options.layout);
            out.print_line({});
        }
    }

    void print_end()
    {
        out.print_line(legend());
        out.print_line({});
        out.print(counts);
    }

private:
    QStringList chosen_tables(const result_database &result, const stored_source &source) const
    {
        QStringList tables = result.tables();
        if (options.table.isEmpty())
            return tables;
        if (!tables.contains(options.table))
            throw host_error(error_kind::not_found, u"the result database "_s + source.result_database
                                                        + u" holds no table "_s + options.table);
        return {options.table};
    }

    /** ", 50 sightings of 12 devices" of a log, as its record has counted them. */
    static QString sightings_in(const stored_source &source, const QString &table)
    {
        const QList<table_rows> counted = source.record ? source.record->rows : QList<table_rows>();
        for (const table_rows &rows : counted) {
            if (rows.table == table && rows.devices)
                return u", "_s + sightings_text(rows);
        }
        return {};
    }

    const show_options &options;
    bool has_several;
    console &out;
    terminal_texts counts;
};

exit_code print_reservations(const case_reservations &reservations, console &out)
{
    for (const QString &text : reservations.incomplete + reservations.manifest + reservations.reports)
        out.warning(text);
    return reservations.incomplete.isEmpty() ? exit_code::done : exit_code::partial;
}

/** For a program: nothing stands on standard output but the file. */
exit_code show_file(const show_options &options, console &out)
{
    if (options.format->separator != 0 && out.columns())
        throw host_error(
            error_kind::refused,
            u"csv and tsv hold texts as they are, which could act on this terminal: send them to a file or "
            "a program, or ask for jsonl"_s);
    const QStringList shortcomings = write_table({options.place, options.table, *options.format, options.source},
                                                 [&out](QByteArrayView bytes) { out.print_bytes(bytes); });
    for (const QString &text : shortcomings)
        out.warning(text);
    return shortcomings.isEmpty() ? exit_code::done : exit_code::partial;
}

} // namespace

exit_code run_show(const show_options &options, console &out)
{
    if (options.format)
        return show_file(options, out);
    if (options.table == host_devices_name)
        return show_host_devices(options, out);
    const QList<stored_source> sources = chosen_sources(options);
    exit_code code = exit_code::done;
    if (QFileInfo(options.place).isDir())
        code = print_reservations(reservations_of(case_layout(options.place)), out);
    source_printer printer(options, sources.size() > 1, out);
    for (const stored_source &source : sources) {
        if (!source.is_complete())
            code = exit_code::partial;
        if (!source.reservation().isEmpty())
            out.warning(source.reservation());
        if (source.is_locked)
            continue; // a reader could keep the run from writing
        try {
            printer.print(source);
        } catch (const host_error &error) {
            if (sources.size() == 1)
                throw;
            out.error(source.name + u": "_s + error.message());
            code = exit_code::partial;
        }
    }
    printer.print_end();
    wal_counts in_logs;
    for (const stored_source &source : sources) {
        if (source.record)
            in_logs += wal_counts(source.record->wal);
    }
    if (in_logs.has_differences())
        out.warning(in_logs.text());
    return code;
}
