// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/extract_command.h"

#include "host/case_layout.h"
#include "host/evidence_snapshot.h"
#include "host/extraction.h"
#include "host/paths.h"
#include "host/plugin_loader.h"
#include "host/plugin_log.h"
#include "host/result_database.h"
#include "host/terminal_text.h"
#include "plugin/bluetooth_logs.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_failures_shown = 5;

[[noreturn]] void refuse(const QString &message)
{
    throw host_error(exit_code::usage, message);
}

/** Options that the source's kind makes no use of would only mislead. */
void check_options_fit_source(const extract_options &options, const source &evidence)
{
    const bool is_ios = evidence.kind == &ios_uid_kind;
    if (is_ios && options.engine_type != 0)
        refuse(u"iOS sources are extracted with the engine KALDO_DESK only"_s);
    if (!is_ios && options.widen_ios_tables)
        refuse(u"--widen-ios-tables is for iOS sources, and this is a "_s + evidence.kind->display_name + u" source"_s);
}

/** Nothing may ever be written below the source, and --force must not remove it. */
void check_places(const extract_options &options, const source &evidence, const case_layout &layout)
{
    for (const QString &place : {layout.directory(), layout.result_folder()}) {
        if (is_inside(place, evidence.off_limits))
            refuse(u"the case lies inside the source, where nothing may be written: "_s + place);
    }
    if (is_inside(evidence.given, layout.result_folder()))
        refuse(u"the source lies inside the case's result, which is made anew: "_s + evidence.given);
    if (options.log_file.isEmpty())
        return;
    if (is_inside(options.log_file, evidence.off_limits))
        refuse(u"the log file lies inside the source, where nothing may be written: "_s + options.log_file);
    if (path_exists(options.log_file) && !options.force)
        refuse(u"the log file is already there: "_s + options.log_file + u": --force replaces it"_s);
}

/** Creates the file that the plug-in appends to: the examiner's, or one that goes when the run ends. */
std::unique_ptr<QFile> create_log_file(const extract_options &options, const source &evidence,
                                       const case_layout &layout)
{
    std::unique_ptr<QFile> file;
    bool is_open = false;
    if (options.log_file.isEmpty()) {
        const QString folder = is_inside(QDir::tempPath(), evidence.off_limits) ? layout.directory() : QDir::tempPath();
        auto temporary = std::make_unique<QTemporaryFile>(folder + u"/bluetooth-logs-XXXXXX.log"_s);
        is_open = temporary->open();
        file = std::move(temporary);
    } else {
        remove_tree(options.log_file); // not truncated: it could be a link to something else
        file = std::make_unique<QFile>(QDir().absoluteFilePath(options.log_file));
        is_open = file->open(QIODevice::ReadWrite | QIODevice::NewOnly);
    }
    if (!is_open)
        throw host_error(exit_code::internal_error,
                         u"the log file "_s + file->fileName() + u" cannot be created: "_s + file->errorString());
    return file;
}

/** The plug-in's log lines come as Qt messages; paths of the evidence stand in them. */
void print_message_safely(QtMsgType, const QMessageLogContext &, const QString &message)
{
    std::fprintf(stderr, "%s\n", terminal_text(message).toUtf8().constData());
}

QString rows_text(qint64 rows)
{
    return QLocale(QLocale::English).toString(rows) + (rows == 1 ? u" row"_s : u" rows"_s);
}

/** Where the result is and how many rows each table of this run got. */
QStringList summary_lines(const source &evidence, const case_layout &layout, const QStringList &tables)
{
    QStringList lines{u"Source  "_s + terminal_text(evidence.kind->display_name + u": "_s + evidence.given),
                      u"Result  "_s + terminal_text(layout.result_database())};
    const result_database result(layout.result_database(), result_database::access::read_only);
    for (const QString &table : tables)
        lines.append(u"        "_s + table.leftJustified(14) + u"  "_s
                     + rows_text(result.row_count(table)).rightJustified(14));
    return lines;
}

void tell_limits(const source &evidence, const console &out)
{
    for (const QString &table : evidence.not_found)
        out.note(u"the source holds no database for the table "_s + table);
    for (const QString &file : evidence.unread)
        out.warning(
            u"rows that are only in the write-ahead log are not in the result, this version does not read it: "_s
            + file);
    if (evidence.kind == &winos_kind)
        out.note(u"this version extracts nothing from Windows sources"_s);
}

/** Reports what the plug-in's log says went wrong. True if anything did. */
bool report_failures(const QList<logged_failure> &failures, bool lacks_ios_columns, const console &out)
{
    qsizetype shown = 0;
    qsizetype ios_rows = 0;
    for (const logged_failure &failure : failures) {
        if (lacks_ios_columns && failure.is_insert)
            ios_rows += failure.count;
        else if (++shown <= most_failures_shown)
            out.warning(failure.text
                        + (failure.count > 1 ? u" ("_s + QString::number(failure.count) + u" times)"_s : QString()));
    }
    if (shown > most_failures_shown)
        out.warning(QString::number(shown - most_failures_shown) + u" more kinds of failure are in the log"_s);
    if (ios_rows > 0)
        out.warning(rows_text(ios_rows)
                    + u" found and not written: the result tables of this version have no columns for iOS rows; "
                      "--widen-ios-tables adds them"_s);
    return !failures.isEmpty();
}

} // namespace

exit_code run_extract(const extract_options &options, const console &out)
{
    const source evidence = find_source(options.input, options.type, options.tables);
    const case_layout layout(options.output);
    check_options_fit_source(options, evidence);
    check_places(options, evidence, layout);
    if (!options.force)
        layout.refuse_earlier_result();
    const std::unique_ptr<bluetooth_logs> plugin = load_plugin(options.plugin_file.isEmpty() ? default_plugin_file()
                                                                                             : options.plugin_file);

    layout.prepare();
    const std::unique_ptr<QFile> log = create_log_file(options, evidence, layout);
    qInstallMessageHandler(print_message_safely);

    extraction_settings settings;
    settings.evidence = evidence;
    settings.case_directory = layout.directory();
    settings.tables = options.tables;
    settings.engine_type = options.engine_type;
    settings.source_number = options.source_number;
    settings.display_name = options.display_name.isEmpty() ? QString(evidence.kind->display_name)
                                                           : options.display_name;
    settings.timezone_offset = options.timezone_offset;
    settings.log_file = log->fileName();
    settings.log_on_terminal = options.verbose;

    const evidence_snapshot before(evidence.watched);
    extraction_progress progress(out, options.tables.size());
    const bool interrupted = run_extraction(*plugin, settings, progress, [&options, &layout] {
        result_database result(layout.result_database(), result_database::access::read_write);
        if (options.widen_ios_tables)
            result.widen_for_ios();
    });
    out.clear_progress();
    const QStringList changes = before.changes_since();

    out.print_unless_quiet(summary_lines(evidence, layout, options.tables));
    tell_limits(evidence, out);
    log->seek(0);
    const QList<logged_failure> failures = failures_in_log(QString::fromLocal8Bit(log->readAll()),
                                                           {evidence.given, layout.directory()});
    const bool lacks_ios_columns = evidence.kind == &ios_uid_kind && !options.widen_ios_tables;
    const bool is_partial = report_failures(failures, lacks_ios_columns, out);
    for (const QString &change : changes)
        out.error(u"the evidence changed during the run: "_s + change);
    if (interrupted)
        out.error(u"interrupted: the result is incomplete"_s);

    if (!changes.isEmpty())
        return exit_code::evidence_changed;
    if (interrupted)
        return exit_code::interrupted;
    return is_partial ? exit_code::partial : exit_code::done;
}
