// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_page.h"

#include "host/case/result_tables.h"
#include "host/files/new_file.h"
#include "host/report/page/html_summary.h"
#include "host/report/page/html_text.h"
#include "host/report/page/page_parts.h"
#include "host/report/reading/common_columns.h"
#include "host/report/reading/row_columns.h"
#include "host/report/reading/wal_change.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *ranks_of_seen = "rank_last_seen";
constexpr const char *ranks_of_connected = "rank_last_connection";

QByteArray policy_hash(const char *part)
{
    return "'sha256-" + QCryptographicHash::hash(QByteArrayView(part), QCryptographicHash::Sha256).toBase64() + '\'';
}

QByteArray page_head()
{
    return "<!DOCTYPE html>\n<html lang=\"en\" dir=\"ltr\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           + policy_hash(page_style) + "; script-src " + policy_hash(page_script)
           + "; base-uri 'none'; form-action 'none'\">\n"
             "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
             "<meta name=\"referrer\" content=\"no-referrer\">\n<title>Bluetooth devices of a case</title>\n<style>"
           + QByteArray(page_style) + "</style>\n</head>\n<body>\n";
}

/** All counters of a row, from the evidence where the host has read it, else from the result. */
std::optional<qint64> counter_in(const report_row &row, const cell &in_evidence, QLatin1StringView column)
{
    if (!in_evidence.is_null())
        return counter_of(in_evidence);
    const int place = row.plugin.column_named(column);
    return place < 0 ? std::nullopt : counter_of(row.plugin.value_of(place));
}

html_table wal_table(const report_case &that_case)
{
    html_table table(u"wal-changes"_s, u"Rows that write-ahead logs change"_s,
                     u"Host reading. The plug-in reads the main file of a database alone; these rows are different in "
                     "the main file with its -wal."_s);
    for (const report_source &source : that_case.sources) {
        for_each_wal_change(that_case, source, [&table, &source](const wal_change &change) {
            table.begin_row();
            table.add(u"source"_s, std::optional<qint64>(source.record.number));
            table.add(u"table"_s, change.table);
            table.add(u"change"_s, change.change);
            table.add(u"file"_s, change.place().file);
            table.add(u"rowid"_s, change.place().rowid);
            table.add(u"before"_s, change.before);
            table.add(u"after"_s, change.after);
        });
    }
    return table;
}

void write_page(const QString &path, const QByteArray &summary, const QList<html_table> &windows,
                const QByteArray &pictures)
{
    new_file file(path);
    file.add(page_head());
    file.add(summary);
    for (const html_table &table : windows)
        file.add(table.section());
    file.add(pictures);
    file.add(limitations_section());
    file.add("</main>\n<dialog id=\"row\" aria-labelledby=\"row-heading\"><h2 id=\"row-heading\">Row</h2><dl></dl>"
             "<p><button type=\"button\" class=\"copy\">Copy this row</button> <button type=\"button\" "
             "class=\"close\">Close</button> <span role=\"status\"></span></p></dialog>\n"
             "<script type=\"application/json\" id=\"data\">{\"tables\":[");
    bool is_first = true;
    for (const html_table &table : windows) {
        file.add(is_first ? "\n" : ",\n");
        file.add(table.data());
        is_first = false;
    }
    file.add("\n]}</script>\n<script>");
    file.add(page_script);
    file.add("</script>\n</body>\n</html>\n");
    file.commit();
}

const section_link shared_link{u"more-than-one-source"_s, u"In more than one source"_s};
const section_link ranks_link{u"ranks"_s, u"Ranks"_s};

QList<section_link> links_to(const QList<html_table> &windows)
{
    QList<section_link> links;
    for (const html_table &table : windows)
        links.append({table.id(), table.title()});
    return links;
}

} // namespace

html_page::html_page(const report_case &that_case)
    : facts(that_case)
{
    tables.insert(u"devices"_s, html_table(u"devices"_s, u"Devices seen (devices)"_s,
                                           u"Each row of the result table \"devices\" as the plug-in wrote it; columns "
                                           "that begin with host_ are the host's own reading of the evidence."_s));
    tables.insert(u"paired_devices"_s,
                  html_table(u"paired-devices"_s, u"Devices paired or in use (paired_devices)"_s,
                             u"Each row of the result table \"paired_devices\" as the plug-in wrote it; columns that "
                             "begin with host_ are the host's own reading of the evidence."_s));
}

void html_page::add(const report_row &row)
{
    html_table &table = tables.find(row.table).value();
    table.begin_row();
    table.add(u"source"_s, std::optional<qint64>(row.source.record.number));
    table.add(u"source_name"_s, row.source.name.toUtf8());
    row_counters &known = counters[row.table][row.source.record.number];
    known.seen.append(counter_in(row, row.host.last_seen_time, "last_seen_time"_L1));
    known.connected.append(counter_in(row, row.host.last_connection_time, "last_connection_time"_L1));
    table.add(QString::fromLatin1(ranks_of_seen), std::optional<qint64>());
    table.add(QString::fromLatin1(ranks_of_connected), std::optional<qint64>());
    for (int column = 0; column < row.plugin.column_count(); ++column)
        table.add(u"plugin_"_s + row.plugin.column_name(column), row.plugin.value_of(column));
    table.add(u"last_seen_as_time"_s, plausible_time(known.seen.last()).toUtf8());
    table.add(u"last_connection_as_time"_s, plausible_time(known.connected.last()).toUtf8());
    if (!row.host.differs.is_null())
        ++differing[row.table];
    static const line_columns<report_row> columns = place_columns<report_row>() + host_columns();
    for (const line_column<report_row> &column : columns)
        table.add(QString::fromUtf8(column.about.cell_name()), column.value(row));
}

/** The tables of rows with their ranks, and the pictures of these. */
QList<html_table> html_page::row_tables(QByteArray &pictures) const
{
    QList<html_table> ranked;
    for (const QString &name : result_tables()) {
        html_table table = *tables.constFind(name);
        qsizetype row = 0;
        for (const report_source &source : facts.sources) {
            const row_counters known = counters.value(name).value(source.record.number);
            const QList<std::optional<qint64>> seen = ranks_of(known.seen);
            const QList<std::optional<qint64>> connected = ranks_of(known.connected);
            for (qsizetype i = 0; i < seen.size(); ++i, ++row) {
                table.set(row, QString::fromLatin1(ranks_of_seen), seen.at(i));
                table.set(row, QString::fromLatin1(ranks_of_connected), connected.at(i));
            }
            pictures += rank_picture(source, name, seen, connected);
        }
        table.add_to_caption(u"Rows in which the two disagree: "_s + QString::number(differing.value(name))
                             + u"; host_differs names the columns."_s);
        ranked.append(table);
    }
    return ranked << wal_table(facts);
}

void html_page::write(const QString &path, const html_table &cards, const QByteArray &shared,
                      const QStringList &shortcomings) const
{
    QByteArray pictures;
    const QList<html_table> windows = QList<html_table>{cards} + row_tables(pictures);
    const QByteArray summary = summary_sections(facts, shortcomings,
                                                QList<section_link>{shared_link} + links_to(windows)
                                                    + QList<section_link>{ranks_link})
                               + shared;
    write_page(path, summary, windows, picture_section(pictures));
}

void html_page::write_index(const QString &path, const QByteArray &shared, const QStringList &shortcomings,
                            const QStringList &pages) const
{
    const QByteArray summary = summary_sections(facts, shortcomings,
                                                {shared_link, {u"pages"_s, u"Rows of the sources"_s}})
                               + pages_section(facts, pages) + shared;
    write_page(path, summary, {}, {});
}

void html_page::write_source(const QString &path, const html_table &cards, const QString &index) const
{
    QByteArray pictures;
    const QList<html_table> windows = QList<html_table>{cards} + row_tables(pictures);
    write_page(path,
               summary_sections(facts, facts.shortcomings, links_to(windows) + QList<section_link>{ranks_link})
                   + way_back_section(index),
               windows, picture_section(pictures));
}
