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

struct named_format
{
    QString name;
    report_format format;
};

const QList<named_format> &formats()
{
    static const QList<named_format> list{{u"html"_s, report_format::html},
                                          {u"csv"_s, report_format::csv},
                                          {u"tsv"_s, report_format::tsv},
                                          {u"jsonl"_s, report_format::jsonl}};
    return list;
}

report_format format_named(const argument &what, const QString &name)
{
    QStringList names;
    for (const named_format &known : formats()) {
        if (known.name == name)
            return known.format;
        names.append(known.name);
    }
    require_choice(what, name, names);
    return {};
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
    report.add_flag("--raw-cells", options->raw_cells, "CSV, TSV: leave texts that look like formulas as they are");
    report.add_flag("--csv-bom", options->csv_bom, "CSV, TSV: begin with a byte order mark");
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
