// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *examples = R"(Examples:
  bluetooth-logs report case
  bluetooth-logs report case -f csv -f jsonl -o tables)";

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
    report.footer(examples);
    add_path(report, {"CASE", "PATH", "The case's folder"}, options->case_directory)->required();
    const argument format{"-f,--format", "FORMAT", "html (the default), csv, tsv or jsonl; may be given several times"};
    add_values(report, format, [options, format](const QStringList &names) {
        for (const QString &name : names)
            options->formats.append(format_named(format, name));
    });
    add_path(report, {"-o,--output", "PATH", "Folder for the files (default CASE/Report)"}, options->output);
    report.add_flag("--raw-cells", options->cells.is_raw, "CSV, TSV: leave texts that look like formulas as they are");
    report.add_flag("--csv-bom", options->cells.has_mark, "CSV, TSV: begin with a byte order mark");
    add_path(report, {"--vendors", "PATH", "List of address ranges and their vendors, like ieee-data's oui.txt"},
             options->vendors);
    report.add_flag("--split", options->split, "HTML: a page for each source, as there is for more than 100,000 rows");
    report.add_flag("--force", options->force, "Replace the files of an earlier report");
    report.final_callback([options, &line] {
        if (options->output.isEmpty())
            options->output = options->case_directory + u"/Report"_s;
        if (options->formats.isEmpty())
            options->formats.append(report_format::html);
        line.command = *options;
    });
}
