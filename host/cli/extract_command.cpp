// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/extract_command.h"

#include "host/files/terminal_text.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

QString number_text(qint64 number)
{
    return QLocale(QLocale::English).toString(number);
}

QString rows_text(const std::optional<qint64> &rows)
{
    if (!rows)
        return u"unknown"_s;
    return number_text(*rows) + (*rows == 1 ? u" row"_s : u" rows"_s);
}

/** Where the result is and how many rows each table of this run got. */
QStringList summary_lines(const source_request &request, const source_outcome &outcome)
{
    QStringList lines{u"Source  "_s + terminal_text(request.source.kind->display_name + u": "_s + request.source.path),
                      u"Result  "_s + terminal_text(request.layout().result_database())};
    for (const table_rows &rows : outcome.record.rows)
        lines.append(u"        "_s + rows.table.leftJustified(14) + u"  "_s
                     + rows_text(rows.stored).rightJustified(14));
    return lines;
}

/** Tells the examiner on the terminal how a run goes. */
class console_observer : public run_observer
{
public:
    explicit console_observer(const console &console)
        : out(console)
    {
    }

    void kept(const QStringList &paths) override
    {
        for (const QString &path : paths)
            out.note(u"this is not of an earlier run and stays: "_s + path);
    }

    void source_started(const source_request &, const QList<run_message> &messages) override
    {
        tell(messages);
    }

    void bytes_hashed(const source_request &, qint64 bytes) override
    {
        hashed += bytes;
        out.show_progress(u"Hashing: "_s + number_text(hashed >> 20) + u" MiB"_s);
    }

    void records_announced(const source_request &request, qint64 records, int tables_done) override
    {
        const qsizetype tables = request.options.tables.size();
        out.show_progress(u"Extracting: table "_s + QString::number(qMin<qsizetype>(tables_done + 1, tables))
                          + u" of "_s + QString::number(tables) + u", "_s + number_text(records) + u" rows"_s);
    }

    void worker_said(const source_request &request, const QString &line) override
    {
        if (request.options.is_verbose)
            out.log_line(line);
    }

    void source_finished(const source_request &request, const source_outcome &outcome) override
    {
        out.clear_progress();
        out.print_unless_quiet(summary_lines(request, outcome));
        tell(outcome.messages);
    }

private:
    void tell(const QList<run_message> &messages)
    {
        for (const run_message &message : messages) {
            switch (message.importance) {
            case run_message::weight::note:
                out.note(message.text);
                break;
            case run_message::weight::warning:
                out.warning(message.text);
                break;
            case run_message::weight::error:
                out.error(message.text);
                break;
            }
        }
    }

    const console &out;
    qint64 hashed = 0;
};

} // namespace

exit_code run_extract(const case_request &request, const console &out)
{
    console_observer observer(out);
    return run_case(request, observer);
}
