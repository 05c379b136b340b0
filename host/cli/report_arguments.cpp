// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/reading_arguments.h"
#include "host/cli/report_command.h"
#include "host/files/paths.h"

#include <QRegularExpression>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

report_format format_named(const argument &what, const QString &name)
{
    QStringList names;
    for (const case_format &known : case_formats) {
        if (known.name == name)
            return known.format;
        names.append(known.name);
    }
    for (const program_format &known : program_formats) {
        if (format_name(known) == name)
            return known.format;
        names.append(format_name(known));
    }
    require_choice(what, name, names);
    return report_format::html;
}

/** "+05:30" or "-08:00", in seconds. */
int zone_of(const argument &what, const QString &text)
{
    static const QRegularExpression form(u"^([+-])([01][0-9]):([0-5][0-9])$"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        refuse(what, text + u" is no zone like +02:00"_s);
    const int seconds = match.captured(2).toInt() * 3600 + match.captured(3).toInt() * 60;
    return match.captured(1) == "-"_L1 ? -seconds : seconds;
}

void add_time_options(CLI::App &report, const std::shared_ptr<report_options> &options)
{
    add_number(report, {"--log-year", "YYYY", "Year of the first device line of each log, for timelines"}, 1970, 9999,
               options->times.log_year);
    const argument zone{"--log-zone", "+HH:MM", "Zone of the logs' times, for timelines"};
    add_value(report, zone, [options, zone](const QString &text) { options->times.log_zone = zone_of(zone, text); });
    const argument epoch{"--mobile-epoch", "YEAR",
                         "1970 or 2001: what times of mobile lists count from, for timelines"};
    add_value(report, epoch, [options, epoch](const QString &text) {
        require_choice(epoch, text, {u"1970"_s, u"2001"_s});
        options->times.mobile_epoch = text.toLongLong();
    });
}

} // namespace

std::shared_ptr<const report_options> add_report_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<report_options>();
    CLI::App &report = *app.add_subcommand("report", "Write reports of a case, for readers and for programs");
    add_place(report, {"CASE", "PATH", "The case's folder", {"bluetooth-logs report case"}}, options->case_directory)
        ->required();
    const argument format{"-f,--format",
                          "FORMAT",
                          "html (the default), csv, tsv, jsonl, timeline, sqlite or xlsx; may be given several times",
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
    add_time_options(report, options);
    add_flag(report, {"--split", "", "HTML: a page for each source, as there is for more than 200,000 rows"},
             options->split);
    add_flag(report, {"--brief", "", "Write brief.html too: the case in short, at most ten sheets of paper"},
             options->brief);
    add_flag(report, {"--force", "", "Replace the files of an earlier report"}, options->force);
    const auto limits = add_reading_limits(report, long_reading);
    report.final_callback([options, limits, &line] {
        options->output = options->output.isEmpty()
                              ? QString(options->case_directory + u"/Report"_s)
                              : resolved_down_to(options->case_directory, options->output, u"--output"_s);
        if (options->formats.isEmpty())
            options->formats.append(report_format::html);
        limits->writable = {options->output};
        line.reading = *limits;
        line.command = [options](console &out) { return run_report(*options, out); };
    });
    return options;
}
