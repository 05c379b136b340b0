// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/report_command.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace {

report_format format_named(const argument &what, const QString &name)
{
    QStringList names{u"html"_s};
    for (const program_format &known : program_formats) {
        if (format_name(known) == name)
            return known.format;
        names.append(format_name(known));
    }
    require_choice(what, name, names);
    return report_format::html;
}

} // namespace

void add_report_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<report_options>();
    CLI::App &report = *app.add_subcommand("report", "Write reports of a case, for readers and for programs");
    add_path(report, {"CASE", "PATH", "The case's folder", {"bluetooth-logs report case"}}, options->case_directory)
        ->required();
    const argument format{"-f,--format",
                          "FORMAT",
                          "html (the default), csv, tsv or jsonl; may be given several times",
                          {"bluetooth-logs report case -f csv -f jsonl -o tables"}};
    add_values(report, format, [options, format](const QStringList &names) {
        for (const QString &name : names)
            options->formats.append(format_named(format, name));
    });
    add_path(report, {"-o,--output", "PATH", "Folder for the files (default CASE/Report)"}, options->output);
    add_flag(report, {"--raw-cells", "", "CSV, TSV: leave texts that look like formulas as they are"},
             options->cells.is_raw);
    add_flag(report, {"--csv-bom", "", "CSV, TSV: begin with a byte order mark"}, options->cells.has_mark);
    add_path(report, {"--vendors", "PATH", "List of address ranges and their vendors, like ieee-data's oui.txt"},
             options->vendors);
    add_flag(report, {"--split", "", "HTML: a page for each source, as there is for more than 100,000 rows"},
             options->split);
    add_flag(report, {"--force", "", "Replace the files of an earlier report"}, options->force);
    report.final_callback([options, &line] {
        if (options->output.isEmpty())
            options->output = options->case_directory + u"/Report"_s;
        if (options->formats.isEmpty())
            options->formats.append(report_format::html);
        line.command = [options](console &out) { return run_report(*options, out); };
    });
}
