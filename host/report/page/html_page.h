// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_PAGE_H
#define HOST_REPORT_PAGE_HTML_PAGE_H

#include "host/report/page/row_tables.h"

#include <QByteArray>
#include <QMap>
#include <QStringList>

#include <optional>
#include <vector>

/** The names of the lists beside the result tables whose lines have devices. */
inline const QString wal_changes_list = QStringLiteral("wal_changes");
inline const QString host_devices_list = QStringLiteral("host_devices");

/** The numbers of the devices of a case's rows, by result table or list and in the order in which a page gets them. */
using row_devices = QMap<QString, std::vector<qint64>>;

/** What pages hold of a case besides its rows. */
struct page_content
{
    const QList<joined_device> &devices; ///< in the order of their numbers
    const row_devices &device_of_row;
    QStringList shortcomings; ///< why the case, or the report, is not whole
    bool is_all_compared;     ///< every row, write-ahead log and list of every source of the case was
    qint64 device_count;      ///< of all devices, also those that are not in the list
    qint64 named_count;       ///< of them
};

/** Makes report.html: one file that needs nothing else and asks nobody for anything. */
class html_page
{
public:
    explicit html_page(const report_case &the_case);

    /** Rows come table by table, and source by source in each. */
    void add(const report_row &row);

    /** A row that stands on another page: the findings count it, and the timeline has it. */
    void count(const report_row &row);

    /** The page of a whole case. */
    void write(const QString &path, const page_content &content);

    /**
     * The case in short: at most ten sheets of paper, whatever its size. @p report_sha256 is that of the full report,
     * its annex; empty: none was written with it. After write(), if that is called.
     */
    void write_brief(const QString &path, const page_content &content, const QString &report_sha256);

    /** The page that leads to those of the sources; its rows were counted. @p pages are their file names, in order. */
    void write_index(const QString &path, const page_content &content, const QStringList &pages);

    /** The page of the only source of the case that it was made for. @p index is the file name of the page above. */
    void write_source(const QString &path, const page_content &content, const QString &index);

    /** What could not be read for the pages that were written, in plain words. */
    const QStringList &problems() const
    {
        return problems_of_lists;
    }

private:
    QStringList shortcomings(const page_content &content) const;
    void count_rows(const page_content &content);
    QList<const html_table *> finished_tables(const page_content &content);
    QByteArray timeline_section(const page_content &content, const QList<device_facts> &facts,
                                const timeline_form &form = {}) const;

    const report_case &facts_of_case;
    QMap<QString, std::shared_ptr<row_table>> tables;
    std::vector<html_table> lists; ///< of the host's own reading
    QStringList problems_of_lists;
    std::optional<row_figures> counts;
};

#endif
