// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_HTML_SUMMARY_H
#define HOST_REPORT_HTML_SUMMARY_H

#include "host/report/device_join.h"
#include "host/report/html_table.h"

#include <QByteArray>
#include <QStringList>

// The parts of a page that are not tables of rows.

/** Heading, navigation, facts of the case, its sources and files, and what appears in more than one source. */
QByteArray summary_sections(const report_case &that_case, const device_join &join, const QList<joined_device> &devices,
                            const QStringList &shortcomings, const QList<html_table> &windows);

/** Last seen against last connected by rank, for the rows of one table of one source that have both: SVG and table. */
QByteArray rank_picture(const report_source &source, const QString &table, const QList<std::optional<qint64>> &seen,
                        const QList<std::optional<qint64>> &connected);

QByteArray picture_section(const QByteArray &pictures);
QByteArray limitations_section();

#endif
