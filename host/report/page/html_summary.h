// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_SUMMARY_H
#define HOST_REPORT_PAGE_HTML_SUMMARY_H

#include "host/report/join/device_join.h"
#include "host/report/page/html_table.h"

#include <QByteArray>
#include <QStringList>

// The parts of a page that are not tables of rows.

/** A section of the page, for its navigation. */
struct section_link
{
    QString id;
    QString title;
};

/** Heading, navigation to the summary, @p sections and the limitations, facts of the case, its sources and files. */
QByteArray summary_sections(const report_case &that_case, const QStringList &shortcomings,
                            const QList<section_link> &sections);

/** What appears in more than one source: the devices that have a shared_number. */
QByteArray shared_section(const report_case &that_case, const QList<joined_device> &devices);

/** Links to the pages of the sources, in the order of the sources. */
QByteArray pages_section(const report_case &that_case, const QStringList &pages);

/** The way from the page of a source to the one above. */
QByteArray way_back_section(const QString &index);

/** Last seen against last connected by rank, for the rows of one table of one source that have both: SVG and table. */
QByteArray rank_picture(const report_source &source, const QString &table, const QList<std::optional<qint64>> &seen,
                        const QList<std::optional<qint64>> &connected);

QByteArray picture_section(const QByteArray &pictures);
QByteArray limitations_section();

#endif
