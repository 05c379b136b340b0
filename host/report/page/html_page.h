// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_PAGE_H
#define HOST_REPORT_PAGE_HTML_PAGE_H

#include "host/report/page/row_tables.h"

#include <QByteArray>
#include <QMap>
#include <QStringList>

/** The numbers of the devices of a case's rows, by result table and in the order in which a page gets its rows. */
using row_devices = QMap<QString, std::vector<qint64>>;

/** What pages tell of a case besides its rows. */
struct page_content
{
    const QList<joined_device> &devices; ///< in the order of their numbers
    const row_devices &device_of_row;
    QStringList shortcomings; ///< why the case, or the report, is not whole
};

/** Makes report.html: one file that needs nothing else and asks nobody for anything. */
class html_page
{
public:
    explicit html_page(const report_case &that_case);

    /** Rows come table by table, and source by source in each. */
    void add(const report_row &row);

    /** The page of a whole case. */
    void write(const QString &path, const page_content &content);

    /**
     * The case in short: at most ten sheets of paper, whatever its size. @p report_sha256 is that of the full report,
     * its annex; empty: none was written with it. After write(), if that is called.
     */
    void write_brief(const QString &path, const page_content &content, const QString &report_sha256);

    /** The page that leads to those of the sources; no row was added to it. @p pages are their file names, in order. */
    void write_index(const QString &path, const page_content &content, const QStringList &pages) const;

    /** The page of the only source of the case that it was made for. @p index is the file name of the page above. */
    void write_source(const QString &path, const page_content &content, const QString &index);

private:
    QList<const html_table *> finished_tables(const page_content &content);
    QByteArray timeline_section(const page_content &content, const QList<device_facts> &facts,
                                const timeline_form &form = {}) const;

    const report_case &facts_of_case;
    QMap<QString, std::shared_ptr<row_table>> tables;
    std::unique_ptr<html_table> changes_of_logs;
    row_figures counts; ///< of the finished tables
};

#endif
