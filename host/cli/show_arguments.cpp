// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/result_tables.h"
#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/host_device_view.h"
#include "host/cli/reading_arguments.h"
#include "host/cli/show_command.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 highest_source = 9999999;
constexpr qint64 any_number_of_rows = qint64(1) << 53;

/** In the order of row_layout. */
const QStringList &layout_names()
{
    static const QStringList names{u"auto"_s, u"table"_s, u"records"_s};
    return names;
}

void take_format(show_options &options, const argument &what, const QString &name)
{
    QStringList names;
    for (const program_format &known : program_formats) {
        if (format_name(known) == name)
            options.format = known;
        names.append(format_name(known));
    }
    require_choice(what, name, names);
}

void refuse_contradictions(const show_options &options)
{
    if (!options.format)
        return;
    const argument format{"--format", "", ""};
    if (options.table.isEmpty())
        refuse(format, u"it needs --table"_s);
    if (options.most_rows || options.layout != row_layout::automatic)
        refuse(format, u"a program gets all rows: --rows and --layout are for readers"_s);
}

} // namespace

std::shared_ptr<const show_options> add_show_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<show_options>();
    CLI::App &show = *app.add_subcommand("show", "Show the extracted rows of a case, safe for the terminal");
    add_place(show, {"CASE", "PATH", "The case's folder, or a result database", {"bluetooth-logs show case"}},
              options->place)
        ->required();
    add_number(show,
               {"--source",
                "N",
                "Show only the source of this number",
                {"bluetooth-logs show case --source 2 --table paired_devices"}},
               0, highest_source, options->source);
    const argument table{"--table", "TABLE", "Show only this table: devices, paired_devices or host_devices"};
    add_value(show, table, [options, table](const QString &name) {
        require_choice(table, name, result_tables() + QStringList{host_devices_name});
        options->table = name;
    });
    add_number(show,
               {"--rows",
                "N",
                "Show only the first N rows of each table",
                {"bluetooth-logs show case --rows 20 --layout records"}},
               0, any_number_of_rows, options->most_rows);
    const argument layout{"--layout", "LAYOUT",
                          "table: a line for each row; records: a block for each row, with a line for each value; auto "
                          "(the default): records where a terminal is too narrow for the table"};
    add_value(show, layout, [options, layout](const QString &name) {
        require_choice(layout, name, layout_names());
        options->layout = row_layout(layout_names().indexOf(name));
    });
    const argument format{"-f,--format",
                          "FORMAT",
                          "csv, tsv or jsonl: the rows of --table for a program, as \"report\" writes them to a file",
                          {"bluetooth-logs show case --table devices -f jsonl"}};
    add_value(show, format, [options, format](const QString &name) { take_format(*options, format, name); });
    const auto limits = add_reading_limits(show, 0); // a pager may hold it for hours
    show.final_callback([options, limits, &line] {
        refuse_contradictions(*options);
        line.reading = *limits;
        line.command = [options](console &out) { return run_show(*options, out); };
    });
    return options;
}
