// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"

#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/source/macos_databases.h"

#include <QCoreApplication>
#include <QFile>
#include <QRegularExpression>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *exit_codes_help = R"(Exit codes:
    0  done
    1  internal error, the plug-in cannot be loaded for instance
    2  wrong use
    3  the source is missing, unreadable or free of evidence
    4  partial: evidence was found, but a part could not be read or written
    5  the evidence changed during the run
  130  interrupted)";

/** The suite's editions; their places are the numbers that the plug-in knows them by. */
const std::vector<std::string> engine_names = {"KALDO_DESK", "KALDO_FIELD", "KALDO_BOOT"};
const std::vector<std::string> table_names = {other_devices_database.result_table.data(),
                                              paired_devices_database.result_table.data()};

QString path_text(const std::string &path)
{
    QString text = QString::fromStdString(path);
    if (text.toStdString() != path)
        throw CLI::ValidationError("the path " + text.toStdString() + " is not valid UTF-8");
    return text;
}

/** An option whose value becomes a path. */
CLI::Option *add_path(CLI::App *command, const std::string &name, QString &path, const std::string &help)
{
    return command
        ->add_option_function<std::string>(
            name, [&path](const std::string &value) { path = path_text(value); }, help)
        ->type_name("PATH");
}

CLI::Option *add_text(CLI::App *command, const std::string &name, QString &text, const std::string &help)
{
    return command
        ->add_option_function<std::string>(
            name, [&text](const std::string &value) { text = QString::fromStdString(value); }, help)
        ->type_name("TEXT");
}

/** "+05:30", or plain seconds, in seconds east of UTC. */
qint64 offset_seconds(const std::string &text)
{
    constexpr qint64 most = 14 * 3600;
    bool is_number = false;
    const qint64 number = QString::fromStdString(text).toLongLong(&is_number);
    if (is_number && number >= -most && number <= most)
        return number;
    static const QRegularExpression form(u"^([+-])(\\d\\d):([0-5]\\d)$"_s);
    const QRegularExpressionMatch match = form.match(QString::fromStdString(text));
    const qint64 seconds = match.captured(2).toLongLong() * 3600 + match.captured(3).toLongLong() * 60;
    if (!match.hasMatch() || seconds > most)
        throw CLI::ValidationError("--timezone-offset", "must look like +05:30, -08:00 or 19800");
    return match.captured(1) == "-"_L1 ? -seconds : seconds;
}

int engine_type(const std::string &name)
{
    return int(std::find(engine_names.begin(), engine_names.end(), name) - engine_names.begin());
}

CLI::App *add_sample(CLI::App &app, sample_options &options)
{
    CLI::App *sample = app.add_subcommand("sample", "Write a synthetic macOS, iOS and Windows source to try things on");
    add_path(sample, "DIR", options.directory, "Folder for the sample; created if missing")->required();
    sample->add_flag("--force", options.force, "Replace an earlier sample in DIR");
    return sample;
}

/** What "extract" is told, as it is told. */
struct extract_arguments
{
    std::vector<std::string> inputs;
    QString source_list;
    QString output;
    QString type = u"auto"_s;
    QString progress = u"text"_s;
    QString examiner;
    QString case_number;
    QString plugin_file;
    int number = -1; ///< none was given
    int only = 0;
    int jobs = 0;
    bool add = false;
    bool resume = false;
    bool widen_ios_tables = false; ///< what the program does by itself now; still understood
    bool force = false;
    extraction_options options;
};

CLI::App *add_extract(CLI::App &app, extract_arguments &arguments)
{
    extraction_options &options = arguments.options;
    CLI::App *extract = app.add_subcommand("extract", "Extract the Bluetooth devices of a source into a case");
    extract
        ->add_option("-i,--input", arguments.inputs,
                     "macOS, Windows: the folder at which the source's file system is reachable. iOS: the system log's "
                     "text file. May be given several times")
        ->type_name("PATH")
        ->allow_extra_args(false);
    add_path(extract, "--sources", arguments.source_list,
             "JSON file with the sources: {\"sources\": [{\"path\": \"...\"}]}");
    add_path(extract, "-o,--output", arguments.output, "The case's folder, outside the source")->required();
    add_text(extract, "-t,--type", arguments.type, "Kind of the source (default auto)")
        ->type_name("TYPE")
        ->check(CLI::IsMember({"macOS", "macos", "iOS_UID", "ios", "winOS", "windows", "auto"}));
    extract
        ->add_option_function<std::vector<std::string>>(
            "--table",
            [&options](const std::vector<std::string> &names) {
                options.tables.clear();
                for (const std::string &name : names)
                    options.tables.append(QString::fromStdString(name));
                options.tables.removeDuplicates();
            },
            "Fill only this table; may be given twice")
        ->type_name("TABLE")
        ->check(CLI::IsMember(table_names))
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    extract
        ->add_option_function<std::string>(
            "--engine", [&options](const std::string &name) { options.engine_type = engine_type(name); },
            "Edition of the suite (default KALDO_DESK)")
        ->type_name("NAME")
        ->check(CLI::IsMember(engine_names));
    extract->add_option("--source-number", arguments.number, "Number of the source in the case (default 1)")
        ->type_name("N")
        ->check(CLI::Range(0, 1000000).description(""));
    add_text(extract, "--os-name", options.display_name, "Operating system's name as the rows show it");
    extract
        ->add_option_function<std::string>(
            "--timezone-offset",
            [&options](const std::string &text) { options.timezone_offset = offset_seconds(text); },
            "Offset of the examiner's time zone from UTC, like +05:30, or in seconds (default 0)")
        ->type_name("OFFSET");
    extract->add_flag("--suite-tables", options.suite_tables,
                      "iOS: leave the result tables as the suite makes them; they hold no iOS rows then");
    extract->add_flag("--widen-ios-tables", arguments.widen_ios_tables,
                      "iOS: add the columns that iOS rows fill to the result tables (the default)");
    extract->add_flag("--live", options.is_live,
                      "The source is a system in use, like / : its evidence may change during the run");
    extract->add_option("--memory-limit", options.memory_limit, "Most memory that one source may take (default 2048)")
        ->type_name("MIB")
        ->check(CLI::Range(qint64(128), qint64(1) << 30).description(""));
    extract->add_option("--max-database", options.max_database, "Largest database that is read (default 1024)")
        ->type_name("MIB")
        ->check(CLI::Range(qint64(1), qint64(1) << 30).description(""));
    extract->add_option("--timeout", options.timeout, "Longest time that one source may take (default: any)")
        ->type_name("SECONDS")
        ->check(CLI::Range(qint64(1), qint64(1) << 30).description(""));
    extract->add_flag("-v,--verbose", options.is_verbose, "Show the plug-in's log on standard error");
    extract->add_option("--jobs", arguments.jobs, "Sources that are worked on side by side (default: processor cores)")
        ->type_name("N")
        ->check(CLI::Range(1, 1024).description(""));
    extract->add_option("--only", arguments.only, "Work on the source of this number alone; \"collect\" comes after")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 1000000).description(""));
    extract->add_flag("--add", arguments.add, "Add the sources to a case that is there");
    extract->add_flag("--resume", arguments.resume, "Run what an earlier run of the case left undone");
    add_text(extract, "--examiner", arguments.examiner, "Examiner's name, for the manifest");
    add_text(extract, "--case-number", arguments.case_number, "Number of the case, for the manifest");
    add_text(extract, "--progress", arguments.progress, "json: JSON Lines on standard error (default text)")
        ->type_name("FORM")
        ->check(CLI::IsMember({"text", "json"}));
    add_path(extract, "--plugin", arguments.plugin_file, "Plug-in file (default: the one beside this program)");
    extract->add_flag("--force", arguments.force, "Remove the case's earlier result first");
    return extract;
}

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(exit_code::usage, message);
}

QList<named_source> sources_of(const extract_arguments &arguments)
{
    const source_kind *kind = arguments.type == "auto"_L1 ? nullptr : source_kind_named(arguments.type);
    QList<named_source> sources;
    if (!arguments.source_list.isNull()) {
        if (!arguments.inputs.empty())
            refuse(u"--input and --sources are two ways to say the same: use one of them"_s);
        if (kind || arguments.number != -1)
            refuse(u"--type and --source-number go with --input; in the file of --sources each source has its own"_s);
        return read_source_list(absolute_path(arguments.source_list, u"--sources"_s));
    }
    for (const std::string &input : arguments.inputs) {
        named_source source;
        source.path = absolute_path(path_text(input), u"--input"_s);
        source.kind = kind;
        source.place = u"-i "_s + path_text(input);
        sources.append(source);
    }
    if (sources.isEmpty())
        refuse(u"no source is given: --input or --sources names them"_s);
    if (arguments.number != -1) {
        if (sources.size() > 1)
            refuse(u"--source-number is for one source; several are numbered in their order, or by --sources"_s);
        sources.first().number = arguments.number;
    }
    return sources;
}

extract_options options_of(const extract_arguments &arguments, const QStringList &all_arguments)
{
    using earlier_run = case_request::earlier_run;
    if (int(arguments.force) + int(arguments.resume) + int(arguments.add) > 1)
        refuse(u"--force, --resume and --add exclude each other"_s);
    extract_options result;
    case_request &request = result.request;
    request.sources = sources_of(arguments);
    request.directory = absolute_path(arguments.output, u"--output"_s);
    request.options = arguments.options;
    request.options.plugin_file = arguments.plugin_file.isNull()
                                      ? QCoreApplication::applicationDirPath() + u"/" BLUETOOTH_LOGS_PLUGIN_FILE ""_s
                                      : absolute_path(arguments.plugin_file, u"--plugin"_s);
    request.earlier = arguments.force    ? earlier_run::removed
                      : arguments.resume ? earlier_run::continued
                      : arguments.add    ? earlier_run::added_to
                                         : earlier_run::refused;
    if (arguments.only != 0) {
        if (arguments.resume || arguments.add)
            refuse(u"--only works on one source of the case; --resume and --add are for the whole"_s);
        request.only = arguments.only;
    }
    request.jobs = arguments.jobs != 0 ? arguments.jobs : int(std::max(1U, std::thread::hardware_concurrency()));
    request.arguments = all_arguments;
    request.examiner = arguments.examiner;
    request.case_number = arguments.case_number;
    result.json_progress = arguments.progress == "json"_L1;
    return result;
}

CLI::App *add_collect(CLI::App &app, collect_options &options)
{
    CLI::App *collect = app.add_subcommand("collect", "Make the manifest of a case from the records of its sources");
    add_path(collect, "CASE", options.case_directory, "The case's folder")->required();
    return collect;
}

/** What "verify" is told, as it is told. */
struct verify_arguments
{
    QString case_directory;
    QString manifest_sha256;
    std::vector<std::string> moved;
    bool results_only = false;
};

CLI::App *add_verify(CLI::App &app, verify_arguments &arguments)
{
    CLI::App *verify = app.add_subcommand("verify", "Compare evidence, working copies and results with the manifest");
    add_path(verify, "CASE", arguments.case_directory, "The case's folder")->required();
    add_text(verify, "--manifest-sha256", arguments.manifest_sha256,
             "The manifest's hash from the examiner's notes (default: the file beside it)")
        ->type_name("HEX");
    verify->add_option("--evidence", arguments.moved, "Where the evidence of a source lies now; may be repeated")
        ->type_name("NUMBER=PATH")
        ->allow_extra_args(false);
    verify->add_flag("--results-only", arguments.results_only, "Leave the evidence out");
    return verify;
}

check_request request_of(const verify_arguments &arguments)
{
    check_request request;
    request.directory = absolute_path(arguments.case_directory, u"CASE"_s);
    request.manifest_sha256 = arguments.manifest_sha256;
    static const QRegularExpression hash_form(u"^([0-9A-Fa-f]{64})?$"_s);
    if (!hash_form.match(request.manifest_sha256).hasMatch())
        refuse(u"--manifest-sha256 is no SHA-256 of 64 hexadecimal digits: "_s + request.manifest_sha256);
    for (const std::string &moved : arguments.moved) {
        const QString text = path_text(moved);
        bool is_number = false;
        const int number = text.section(u'=', 0, 0).toInt(&is_number);
        if (!is_number || !text.contains(u'='))
            refuse(u"--evidence must look like 3=/new/place, and this does not: "_s + text);
        request.moved_to.insert(number, absolute_path(text.section(u'=', 1), u"--evidence"_s));
    }
    request.leaves_out_evidence = arguments.results_only;
    return request;
}

CLI::App *add_show(CLI::App &app, show_options &options)
{
    CLI::App *show = app.add_subcommand("show", "Show the extracted rows of a case");
    add_path(show, "CASE", options.case_directory, "The case's folder")->required();
    add_text(show, "--table", options.table, "Show only this table")
        ->type_name("TABLE")
        ->check(CLI::IsMember(table_names));
    return show;
}

CLI::App *add_report(CLI::App &app, report_options &options)
{
    static const std::map<std::string, report_format> formats = {{"html", report_format::html},
                                                                 {"csv", report_format::csv},
                                                                 {"tsv", report_format::tsv},
                                                                 {"jsonl", report_format::jsonl}};
    CLI::App *report = app.add_subcommand("report", "Write reports of a case, for readers and for programs");
    add_path(report, "CASE", options.case_directory, "The case's folder")->required();
    report
        ->add_option_function<std::vector<std::string>>(
            "-f,--format",
            [&options](const std::vector<std::string> &names) {
                for (const std::string &name : names)
                    options.formats.append(formats.at(name));
            },
            "html, csv, tsv or jsonl; may be repeated (default html)")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"html", "csv", "tsv", "jsonl"}))
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    add_path(report, "-o,--output", options.output, "Folder for the files (default CASE/Report)");
    report->add_flag("--raw-cells", options.raw_cells, "CSV, TSV: leave texts that look like formulas as they are");
    report->add_flag("--csv-bom", options.csv_bom, "CSV, TSV: begin with a byte order mark");
    report->add_flag("--force", options.force, "Replace the files of an earlier report");
    return report;
}

report_options with_places(report_options options)
{
    options.case_directory = absolute_path(options.case_directory, u"CASE"_s);
    options.output = options.output.isNull() ? options.case_directory + u"/Report"_s
                                             : absolute_path(options.output, u"--output"_s);
    if (options.formats.isEmpty())
        options.formats.append(report_format::html);
    return options;
}

QStringList arguments_of(int argc, char **argv)
{
    QStringList texts;
    for (int i = 1; i < argc; ++i)
        texts.append(QString::fromUtf8(argv[i]));
    return texts;
}

/** Help goes to standard output and is no error; everything else that is wrong is. */
command_line help_or_throw(const CLI::App &app, const CLI::ParseError &error)
{
    if (error.get_exit_code() == 0) {
        app.exit(error);
        return {};
    }
    const QString reason = app.get_subcommands().empty()
                               ? u"one of the commands sample, extract, collect, verify, report and show is needed"_s
                               : QString::fromUtf8(error.what());
    throw host_error(exit_code::usage, reason + u" (bluetooth-logs --help tells more)"_s);
}

} // namespace

command_line parse_command_line(int argc, char **argv)
{
    command_line result;
    sample_options sample;
    extract_arguments extract;
    show_options show;
    collect_options collect;
    verify_arguments verify;
    report_options report;

    CLI::App app("Extracts Bluetooth devices from macOS, iOS and Windows sources.", "bluetooth-logs");
    app.set_version_flag("--version", "bluetooth-logs " BLUETOOTH_LOGS_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(exit_codes_help);
    app.add_flag("-q,--quiet", result.output.quiet, "Only data, warnings and errors");
    app.add_flag("--no-color", result.output.no_color, "No colours on a terminal; NO_COLOR does the same");

    const CLI::App *sample_command = add_sample(app, sample);
    const CLI::App *extract_command = add_extract(app, extract);
    add_show(app, show);
    const CLI::App *collect_command = add_collect(app, collect);
    const CLI::App *verify_command = add_verify(app, verify);
    const CLI::App *report_command = add_report(app, report);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return help_or_throw(app, error);
    }
    result.output.no_progress = extract.options.is_verbose || extract.progress == "json"_L1;
    if (sample_command->parsed())
        result.command = sample;
    else if (extract_command->parsed())
        result.command = options_of(extract, arguments_of(argc, argv));
    else if (collect_command->parsed())
        result.command = collect;
    else if (verify_command->parsed())
        result.command = request_of(verify);
    else if (report_command->parsed())
        result.command = with_places(report);
    else
        result.command = show;
    return result;
}
