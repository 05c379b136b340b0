// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_PAGE_H
#define HOST_REPORT_PAGE_HTML_PAGE_H

#include "host/report/page/html_table.h"
#include "host/report/reading/counter.h"
#include "host/report/reading/report_row.h"

#include <QByteArray>
#include <QMap>

/** The counters of the rows of one table of one source, for their ranks. */
struct row_counters
{
    QList<std::optional<qint64>> seen;
    QList<std::optional<qint64>> connected;
};

/** Makes report.html: one file that needs nothing else and asks nobody for anything. */
class html_page
{
public:
    explicit html_page(const report_case &that_case);

    /** Rows come table by table, and source by source in each. */
    void add(const report_row &row);

    /** The page of a whole case. @p cards are its devices, @p shared is the section of those in several sources. */
    void write(const QString &path, const html_table &cards, const QByteArray &shared,
               const QStringList &shortcomings) const;

    /** The page that leads to those of the sources; no row was added to it. @p pages are their file names, in order. */
    void write_index(const QString &path, const QByteArray &shared, const QStringList &shortcomings,
                     const QStringList &pages) const;

    /** The page of the only source of the case that it was made for. @p index is the file name of the page above. */
    void write_source(const QString &path, const html_table &cards, const QString &index) const;

private:
    QList<html_table> row_tables(QByteArray &pictures) const;

    const report_case &facts;
    QMap<QString, html_table> tables;
    QMap<QString, QMap<int, row_counters>> counters; ///< by table and number of the source
    QMap<QString, qint64> differing;                 ///< rows of each table in which host and plug-in disagree
};

#endif
