// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/extract_command.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

constexpr double most_gibibytes = 1 << 20;
constexpr qint64 highest_number = 1000000;
constexpr qint64 most_jobs = 1024;
constexpr qint64 farthest_zone = qint64(14) * 3600;
constexpr QLatin1StringView any_kind("auto");

/** The suite's editions; their places are the numbers that the plug-in knows them by. */
const QStringList &engine_names()
{
    static const QStringList names{u"KALDO_DESK"_s, u"KALDO_FIELD"_s, u"KALDO_BOOT"_s};
    return names;
}

QStringList kind_names()
{
    QStringList names{any_kind};
    for (const source_kind *kind : source_kinds) {
        for (const QLatin1StringView name : {kind->name, kind->short_name}) {
            if (!names.contains(name, Qt::CaseInsensitive))
                names.append(name);
        }
    }
    return names;
}

/** "+05:30", or plain seconds, in seconds east of UTC. */
qint64 offset_seconds(const argument &what, const QString &text)
{
    bool is_number = false;
    const qint64 number = text.toLongLong(&is_number);
    if (is_number && qAbs(number) <= farthest_zone)
        return number;
    static const QRegularExpression form(u"^([+-])(\\d\\d):([0-5]\\d)$"_s);
    const QRegularExpressionMatch match = form.match(text);
    const qint64 seconds = match.captured(2).toLongLong() * 3600 + match.captured(3).toLongLong() * 60;
    if (!match.hasMatch() || seconds > farthest_zone)
        refuse(what, u"must look like +05:30, -08:00 or 19800, and not be "_s + text);
    return match.captured(1) == "-"_L1 ? -seconds : seconds;
}

/** The arguments of "extract", as far as they are no members of the request. */
struct extract_arguments
{
    QStringList inputs; ///< absolute
    QString source_list;
    const source_kind *kind = nullptr;
    std::optional<qint64> number;
    std::optional<qint64> volume;
    QString member;
    std::optional<qint64> only;
    qint64 jobs = std::max(1U, std::thread::hardware_concurrency());
    bool force = false;
    bool add = false;
    bool resume = false;
    extract_options result;
};

void add_sources(CLI::App &extract, extract_arguments &arguments)
{
    const argument input{"-i,--input",
                         "PATH",
                         "The source; may be given several times. macOS, Windows: the folder at which its file system "
                         "is reachable. iOS: the system log's text file, also compressed, a backup, or the folder of "
                         "its file system. Or an image or archive of one of them",
                         {"bluetooth-logs extract -i /mnt/image -o case", "a mounted macOS or Windows volume"}};
    add_values(extract, input, [&arguments, input](const QStringList &paths) {
        for (const QString &path : paths)
            arguments.inputs.append(absolute_path(path, input.name()));
    });
    add_example(extract, {"bluetooth-logs extract -i dump.tar.gz -o case", "an archive of a whole file system"});
    add_example(extract, {"bluetooth-logs extract -i /mnt/a -i /mnt/b -o case", "two sources"});
    add_path(extract,
             {"--sources",
              "FILE",
              "JSON file with the sources: {\"sources\": [{\"path\": \"...\"}]}",
              {"bluetooth-logs extract --sources list.json -o case", "many sources, with names of their own"}},
             arguments.source_list);
    const argument type{"-t,--type",
                        "TYPE",
                        "Kind of the source: macos, ios, ios-files, ios-backup, windows, or auto (the default)",
                        {"bluetooth-logs extract -i system_logs.txt -t ios -o case",
                         "the system log of an iOS device"}};
    add_value(extract, type, [&arguments, type](const QString &name) {
        arguments.kind = source_kind_named(name);
        if (!arguments.kind && name.compare(any_kind, Qt::CaseInsensitive) != 0)
            require_choice(type, name, kind_names());
    });
    add_number(extract,
               {"--volume",
                "N",
                "Volume of an image whose evidence is taken; inspect lists them",
                {"bluetooth-logs extract -i disk.E01 --volume 2 -o case", "a volume of an image"}},
               1, highest_number, arguments.volume);
    add_text(extract,
             {"--member",
              "PATH",
              "Log in an archive, or the folder in it that a source begins at",
              {"bluetooth-logs extract -i logs.zip --member a.log -o case", "a log in an archive"}},
             arguments.member);
    add_number(extract, {"--source-number", "N", "Number of the source in the case (default 1)"}, 0, highest_number,
               arguments.number);
    add_example(extract, {"bluetooth-logs extract -i backup -t ios-backup -o case", "a backup of an iOS device"});
    add_flag(extract,
             {"--live",
              "",
              "The source is a system in use, like /: its evidence may change during the run",
              {"bluetooth-logs extract -i / --live -o /media/disk/case", "the running system"}},
             arguments.result.request.options.is_live);
}

void add_case(CLI::App &extract, extract_arguments &arguments)
{
    case_request &request = arguments.result.request;
    add_place(extract, {"-o,--output", "PATH", "The case's folder, outside the sources"}, request.directory)
        ->required();
    add_flag(extract,
             {"--add",
              "",
              "Add the sources to a case that is there",
              {"bluetooth-logs extract -i /mnt/c -o case --add", "a third one later"}},
             arguments.add);
    add_flag(extract,
             {"--resume",
              "",
              "Run what an earlier run of the case left undone; the sources need not be named again",
              {"bluetooth-logs extract -o case --resume", "what an earlier run left undone"}},
             arguments.resume);
    add_flag(extract, {"--force", "", "Remove the case's earlier results first"}, arguments.force);
    add_number(extract, {"--only", "N", "Work on the source of this number alone; \"collect\" comes after"}, 1,
               highest_number, arguments.only);
    add_text(extract, {"--examiner", "TEXT", "Examiner's name, for the manifest"}, request.examiner);
    add_text(extract, {"--case-number", "TEXT", "Number of the case, for the manifest"}, request.case_number);
}

void add_results(CLI::App &extract, extraction_options &options)
{
    const argument table{"--table", "TABLE", "Fill only this table, devices or paired_devices; may be given twice"};
    add_values(extract, table, [&options, table](const QStringList &names) {
        for (const QString &name : names)
            require_choice(table, name, result_tables());
        options.tables = names;
        options.tables.removeDuplicates();
    });
    const argument engine{"--engine", "NAME",
                          "Edition of the suite: KALDO_DESK (the default), KALDO_FIELD, KALDO_BOOT"};
    add_value(extract, engine, [&options, engine](const QString &name) {
        require_choice(engine, name, engine_names());
        options.engine_type = int(engine_names().indexOf(name));
    });
    add_text(extract, {"--os-name", "TEXT", "Name of the operating system as the rows show it"}, options.display_name);
    const argument zone{"--timezone-offset", "OFFSET",
                        "Offset from UTC that the plug-in is given, like +05:30, or in seconds (default 0). It "
                        "changes nothing of the tables, whose dates stand as the source has them"};
    add_value(extract, zone,
              [&options, zone](const QString &text) { options.timezone_offset = offset_seconds(zone, text); });
    add_flag(extract,
             {"--suite-tables", "", "iOS: leave the result tables as the suite makes them; they hold no iOS rows then"},
             options.suite_tables);
    add_flag(extract, {"--no-container-hash", "", "Leave out the SHA-256 of images and archives"},
             options.skips_container_hash);
    add_flag(extract, {"--follow-links", "", "Read evidence too that a link has outside of the source"},
             options.follow_links);
}

void add_limits(CLI::App &extract, extraction_options &options, qint64 &jobs)
{
    add_number(extract, {"--jobs", "N", "Sources that are worked on side by side (default: the processor's cores)"}, 1,
               most_jobs, jobs);
    add_process_limits(extract, "a source", options.memory_limit, options.timeout);
    add_number(extract, {"--max-database", "MIB", "Largest database that is read (default 1024)"}, 1, most_mebibytes,
               options.max_database);
    const argument max_log{"--max-log", "GIB", "Largest log that is taken out of an archive, like 0.5 (default 64)"};
    add_value(extract, max_log, [&options, max_log](const QString &text) {
        bool is_number = false;
        const double gibibytes = text.toDouble(&is_number);
        if (!is_number || !(gibibytes > 0) || gibibytes > most_gibibytes)
            refuse(max_log, u"must be a number above 0, and not be "_s + text);
        options.max_log = qMax<qint64>(1, qint64(gibibytes * double(qint64(1) << 30)));
    });
    extract.add_flag_callback(
        "--no-confinement", [&options] { options.is_confined = false; },
        "Let the process that runs the plug-in do whatever you may do (default: it writes in its own "
        "folder of the case alone, as far as the system can hold it there)");
}

void add_display(CLI::App &extract, extract_options &options)
{
    add_path(extract, {"--plugin", "PATH", "Plug-in file (default: the one beside this program)"},
             options.request.options.plugin_file);
    const argument progress{"--progress", "FORM",
                            "How progress is reported: text (the default), or json: JSON Lines on standard error"};
    add_value(extract, progress, [&options, progress](const QString &form) {
        require_choice(progress, form, {u"text"_s, u"json"_s});
        options.json_progress = form == "json"_L1;
    });
    add_flag(extract, {"-v,--verbose", "", "Print the plug-in's log on standard error"},
             options.request.options.is_verbose);
}

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(error_kind::refused, message);
}

QList<named_source> sources_of(const extract_arguments &arguments)
{
    if (!arguments.source_list.isEmpty()) {
        if (!arguments.inputs.isEmpty())
            refuse(u"--input and --sources are two ways to say the same: use one of them"_s);
        if (arguments.kind || arguments.number || arguments.volume || !arguments.member.isEmpty())
            refuse(u"--type, --source-number, --volume and --member go with --input; in the file of --sources each "
                   "source has its own"_s);
        return read_source_list(arguments.source_list);
    }
    QList<named_source> sources;
    for (const QString &input : arguments.inputs) {
        named_source source;
        source.path = input;
        source.kind = arguments.kind;
        source.volume = int(arguments.volume.value_or(0));
        source.member = arguments.member;
        source.place = u"-i "_s + input;
        sources.append(source);
    }
    if (sources.isEmpty() && !arguments.resume)
        refuse(u"no source is given: --input or --sources names them"_s);
    if ((arguments.volume || !arguments.member.isEmpty()) && sources.size() > 1)
        refuse(u"--volume and --member are for one source; several are told them by --sources"_s);
    if (arguments.number) {
        if (sources.size() > 1)
            refuse(u"--source-number is for one source; several are numbered in their order, or by --sources"_s);
        sources.first().number = int(*arguments.number);
    }
    return sources;
}

extract_options options_of(const extract_arguments &arguments, const QStringList &typed)
{
    using earlier_run = case_request::earlier_run;
    if (int(arguments.force) + int(arguments.resume) + int(arguments.add) > 1)
        refuse(u"--force, --resume and --add exclude each other"_s);
    extract_options result = arguments.result;
    case_request &request = result.request;
    request.sources = sources_of(arguments);
    if (request.options.plugin_file.isEmpty())
        request.options.plugin_file = QCoreApplication::applicationDirPath() + u"/" BLUETOOTH_LOGS_PLUGIN_FILE ""_s;
    request.earlier = arguments.force    ? earlier_run::removed
                      : arguments.resume ? earlier_run::continued
                      : arguments.add    ? earlier_run::added_to
                                         : earlier_run::refused;
    if (arguments.only) {
        if (arguments.resume || arguments.add)
            refuse(u"--only works on one source of the case; --resume and --add are for the whole"_s);
        request.only = int(*arguments.only);
    }
    request.jobs = int(arguments.jobs);
    request.arguments = typed;
    return result;
}

} // namespace

std::shared_ptr<const extract_options> add_extract_command(CLI::App &app, command_line &line)
{
    const auto arguments = std::make_shared<extract_arguments>();
    extraction_options &options = arguments->result.request.options;
    CLI::App &extract = *app.add_subcommand("extract", "Extract the Bluetooth devices of sources into a case");
    add_sources(extract, *arguments);
    add_case(extract, *arguments);
    add_results(extract, options);
    add_limits(extract, options, arguments->jobs);
    add_display(extract, arguments->result);
    extract.final_callback([arguments, &line] {
        line.output.has_events = arguments->result.json_progress;
        line.output.no_progress = arguments->result.request.options.is_verbose || line.output.has_events;
        arguments->result = options_of(*arguments, line.arguments);
        line.command = [arguments](console &out) { return run_extract(arguments->result, out); };
    });
    return {arguments, &arguments->result};
}
