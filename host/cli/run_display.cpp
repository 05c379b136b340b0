// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/run_display.h"

#include "host/case/wal_counts.h"
#include "host/cli/time_left.h"
#include "host/source/evidence_files.h"
#include "host/source/source_kinds.h"
#include "host/text/count_text.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QLocale>
#include <QMap>
#include <QSet>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 milliseconds_between_lines = 100;

QString size_text(qint64 bytes)
{
    return QLocale(QLocale::English).formattedDataSize(bytes, 1);
}

void print(console &out, const run_message &message, const QString &prefix)
{
    const QString text = prefix + message.text;
    switch (message.importance) {
    case run_message::weight::note:
        return out.note(text);
    case run_message::weight::warning:
        return out.warning(text);
    case run_message::weight::error:
        return out.error(text);
    }
}

QString kind_text(const source_request &request)
{
    const source_kind *kind = request.source.recorded_kind();
    return kind ? QString(kind->display_name) : request.source.is_taken_out ? u"container"_s : u"unknown kind"_s;
}

/** "macOS: /evidence/laptop", before it the name that the examiner gave. The record knows what was found inside. */
QString source_text(const source_request &request, const source_record &record)
{
    const source_kind *kind = source_kind_named(record.type);
    return (request.name.isEmpty() ? QString() : QString(request.name + u"  "_s))
           + (kind ? QString(kind->display_name) : kind_text(request)) + u": "_s + request.source.path;
}

/** "Source3  done  1,000 devices, 20 paired_devices, 12 host devices". */
QString state_and_counts(const source_request &request, const source_record &record)
{
    QStringList counts;
    for (const table_rows &rows : record.rows)
        counts.append(rows.devices ? sightings_text(rows)
                                   : (rows.stored ? count_text(*rows.stored) : u"unknown"_s) + u' ' + rows.table);
    if (record.host_devices.isDouble())
        counts.append(count_text(record.host_devices.toInteger()) + u" host devices"_s);
    return source_name(request.number) + u"  "_s + status_name(record.status)
           + (counts.isEmpty() ? QString() : u"  "_s + counts.join(u", "_s));
}

/** Where the result is and how many rows each table of this run got. */
terminal_texts result_lines(const source_request &request, const source_record &record)
{
    terminal_texts lines{u"Source  "_s + source_text(request, record)};
    if (record.result_path.isEmpty())
        return lines; // a run that ended early may have none
    lines.append(u"Result  "_s + request.layout().result_database());
    for (const table_rows &rows : record.rows)
        lines.append(u"        "_s + rows.table.leftJustified(14) + u"  "_s
                     + (rows.stored ? rows_text(*rows.stored) : u"unknown"_s).rightJustified(14)
                     + (rows.devices ? QString(u", "_s + sightings_text(rows)) : QString()));
    if (record.host_devices.isDouble())
        lines.append(state_and_counts(request, record));
    return lines;
}

/** "Source3  done  1,000 devices, 20 paired_devices, 12 host devices  macOS: /evidence/laptop". */
QString result_line(const source_request &request, const source_record &record)
{
    return state_and_counts(request, record) + u"  "_s + source_text(request, record);
}

QString duration_text(qint64 seconds)
{
    return seconds < 90 ? QString::number(seconds) + u" s"_s : QString::number((seconds + 30) / 60) + u" min"_s;
}

/** The bytes of the evidence as the plug-in's run begins; all of them are hashed before it and after it. */
qint64 evidence_bytes(const evidence_source &source)
{
    qint64 bytes = 0;
    for (const QString &path : evidence_paths(source))
        bytes += QFileInfo(source.root + path).size();
    return bytes;
}

/** How far a source that runs has come. */
struct source_progress
{
    QString kind;
    QString rows;      ///< "table 1 of 2, 1,000 rows"; empty before there are any
    qint64 hashed = 0; ///< bytes
    qint64 to_be_hashed = 0;
    qint64 read = 0; ///< of the container

    double done() const
    {
        return to_be_hashed > 0 ? qMin(1.0, double(hashed) / double(to_be_hashed)) : 0;
    }

    /**
     * "macOS: 25 % of 2.0 GiB hashed"; the rows in place of the kind once there are some. Of a container, whose
     * evidence is not known before it was read, "container: 2.0 GiB read, 1.0 GiB hashed".
     */
    QString text() const
    {
        if (to_be_hashed == 0)
            return (rows.isEmpty() ? kind + u": "_s : rows + u", "_s)
                   + (read > 0 ? size_text(read) + u" read, "_s : QString()) + size_text(hashed) + u" hashed"_s;
        const QString bytes = count_text(qint64(done() * 100)) + u" % of "_s + size_text(to_be_hashed) + u" hashed"_s;
        return (rows.isEmpty() ? kind + u": "_s : rows + u", "_s) + bytes;
    }
};

/** For examiners. */
class text_display : public run_observer
{
public:
    text_display(const display_options &display, console &console)
        : options(display)
        , out(console)
    {
        clock.start();
    }

    void kept(const QStringList &paths) override
    {
        for (const QString &path : paths)
            out.note(u"this is not of an earlier run and stays: "_s + path);
    }

    void source_started(const source_request &request, const QList<run_message> &messages) override
    {
        running[request.number] = {.kind = kind_text(request),
                                   .rows = {},
                                   .hashed = 0,
                                   .to_be_hashed = request.source.is_taken_out ? 0 : 2 * evidence_bytes(request.source),
                                   .read = 0};
        for (const run_message &message : messages) {
            if (!said_before.contains(message.text)) // it is the same for other sources of the case
                print(out, message, {});
            said_before.insert(message.text);
        }
        show();
    }

    void bytes_hashed(const source_request &request, qint64 bytes) override
    {
        hashed += bytes;
        running[request.number].hashed += bytes;
        show();
    }

    void bytes_read(const source_request &request, qint64 bytes) override
    {
        running[request.number].read += bytes;
        show();
    }

    void records_announced(const source_request &request, qint64 records, int tables_done) override
    {
        const qsizetype tables = request.options.tables.size();
        running[request.number].rows = u"table "_s + QString::number(qMin<qsizetype>(tables_done + 1, tables))
                                       + u" of "_s + QString::number(tables) + u", "_s + count_text(records)
                                       + u" rows"_s;
        show(tables_done == tables);
    }

    void worker_said(const source_request &request, const QString &line) override
    {
        if (request.options.is_verbose)
            out.log_line(prefix(request) + line);
    }

    void cancelling(const source_request &) override
    {
        out.note(u"finishing what is being written; again to stop at once"_s);
    }

    void source_finished(const source_request &request, const source_record &record) override
    {
        running.remove(request.number);
        ++sources_done;
        for (const table_rows &rows : record.rows)
            rows_stored += rows.stored.value_or(0);
        out.progress().clear();
        if (options.source_count == 1)
            out.print_unless_quiet(result_lines(request, record));
        else
            out.print_unless_quiet({result_line(request, record)});
        const wal_counts log(record.wal);
        in_logs += log;
        const bool is_summed_up = options.source_count > 1 && log.has_differences(); // see case_finished()
        for (const run_message &message : record.messages) {
            if (!is_summed_up || message.text != log.text())
                print(out, message, prefix(request));
        }
        if (sources_done < options.source_count)
            show();
    }

    void case_finished() override
    {
        if (options.source_count == 1 || !in_logs.has_differences())
            return;
        out.progress().clear();
        print(out, {run_message::weight::warning, in_logs.text()}, {});
    }

private:
    QString prefix(const source_request &request) const
    {
        return options.source_count == 1 ? QString() : source_name(request.number) + u": "_s;
    }

    QString left_text(double done)
    {
        const std::optional<qint64> seconds = left.seconds(clock.elapsed(), done);
        return seconds ? QString(u", "_s + duration_text(*seconds) + u" left"_s) : QString();
    }

    /** One source: what it does. Several: all of them in one line, then a line for each that runs. */
    terminal_texts lines()
    {
        if (options.source_count == 1)
            return {u"Extracting: "_s + running.first().text() + left_text(running.first().done())};
        double done = double(sources_done);
        for (const source_progress &source : std::as_const(running))
            done += source.done();
        terminal_texts result{count_text(sources_done) + u" of "_s + count_text(options.source_count) + u" sources, "_s
                              + count_text(rows_stored) + u" rows, "_s + count_text(hashed >> 20) + u" MiB hashed"_s
                              + left_text(done / double(options.source_count))};
        for (auto source = running.begin(); source != running.end(); ++source)
            result.append(u"  Source"_s + QString::number(source.key()) + u"  "_s + source->text());
        return result;
    }

    void show(bool is_important = false)
    {
        if (running.isEmpty()
            || (!is_important && since_last.isValid() && since_last.elapsed() < milliseconds_between_lines))
            return;
        since_last.start();
        out.progress().show(lines());
    }

    const display_options options;
    console &out;
    QMap<int, source_progress> running; ///< by the source's number
    QSet<QString> said_before;          ///< what holds for several sources
    time_left left;
    wal_counts in_logs; ///< of all sources
    qint64 hashed = 0;
    qint64 rows_stored = 0;
    qsizetype sources_done = 0;
    QElapsedTimer clock;
    QElapsedTimer since_last;
};

/** For programs. */
class json_display : public run_observer
{
public:
    json_display(const display_options &display, console &console_of_run)
        : options(display)
        , out(console_of_run)
    {
    }

    void kept(const QStringList &paths) override
    {
        out.event({{u"event"_s, u"kept"_s}, {u"paths"_s, QJsonArray::fromStringList(paths)}});
    }

    void source_started(const source_request &request, const QList<run_message> &messages) override
    {
        out.event({{u"event"_s, u"started"_s}, {u"source"_s, request.number}, {u"path"_s, request.source.path}});
        for (const run_message &message : messages)
            write_message(request, message);
    }

    void bytes_hashed(const source_request &request, qint64 bytes) override
    {
        out.event({{u"event"_s, u"hashed"_s}, {u"source"_s, request.number}, {u"bytes"_s, bytes}});
    }

    void bytes_read(const source_request &request, qint64 bytes) override
    {
        out.event({{u"event"_s, u"read"_s}, {u"source"_s, request.number}, {u"bytes"_s, bytes}});
    }

    void records_announced(const source_request &request, qint64 records, int tables_done) override
    {
        out.event({{u"event"_s, u"records"_s},
                   {u"source"_s, request.number},
                   {u"records"_s, records},
                   {u"tables_done"_s, tables_done}});
    }

    void worker_said(const source_request &request, const QString &line) override
    {
        if (request.options.is_verbose)
            out.event({{u"event"_s, u"log"_s}, {u"source"_s, request.number}, {u"line"_s, line}});
    }

    void cancelling(const source_request &) override
    {
        out.event({{u"event"_s, u"cancelling"_s}});
    }

    void source_finished(const source_request &request, const source_record &record) override
    {
        const QJsonObject json = record.to_json();
        for (const run_message &message : record.messages)
            write_message(request, message);
        out.event({{u"event"_s, u"finished"_s},
                   {u"source"_s, request.number},
                   {u"status"_s, json.value("status"_L1)},
                   {u"exit_code"_s, json.value("exit_code"_L1)},
                   {u"rows"_s, json.value("rows"_L1)},
                   {u"sources_done"_s, ++sources_done},
                   {u"sources"_s, options.source_count}});
    }

    void case_finished() override
    {
    }

private:
    void write_message(const source_request &request, const run_message &message)
    {
        out.event({{u"event"_s, u"message"_s},
                   {u"source"_s, request.number},
                   {u"weight"_s, QString(weight_name(message.importance))},
                   {u"text"_s, message.text}});
    }

    const display_options options;
    console &out;
    qint64 sources_done = 0;
};

} // namespace

std::unique_ptr<run_observer> make_display(const display_options &options, console &out)
{
    if (options.is_json)
        return std::make_unique<json_display>(options, out);
    return std::make_unique<text_display>(options, out);
}
