// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_FINDINGS_H
#define HOST_REPORT_PAGE_FINDINGS_H

#include "host/report/page/device_facts.h"

#include <QByteArray>
#include <QStringList>

/** Numbers of rows that the findings show. */
struct row_figures
{
    qint64 sightings = 0;       ///< rows of logs in the table of devices
    qint64 sighted_devices = 0; ///< different SFDevice IDs, or addresses, of these rows
    qint64 differing = 0;       ///< rows in which the host reads something else than the plug-in
    qint64 differing_seen = 0;  ///< of them, those of the table of devices seen
    qint64 left_out = 0;        ///< rows of which the plug-in leaves something out by design
    qint64 devices = 0;
    qint64 named = 0;
    qint64 added_by_logs = 0; ///< rows that only a write-ahead log has
    qint64 changed_by_logs = 0;
    qint64 deleted_by_logs = 0;
};

/** How long the short tables are, and where they lead to. */
struct findings_form
{
    qsizetype most_rows = 20;
    bool has_pages = true;       ///< numbers of devices lead to the devices' pages
    QStringList pages = {};      ///< the files that these stand in, by source; empty: this one
    qsizetype most_columns = 0;  ///< of a text of the evidence, of which a wide character takes two; 0: all of it
    qsizetype most_sources = 20; ///< whose numbers stand in a cell
    bool is_brief = false;       ///< for paper: a cell has two lines, no more
};

/** Figures that lead to where they come from. */
QByteArray figures(const report_case &the_case, const QList<device_facts> &devices, const row_figures &rows,
                   const findings_form &form);

/** What appears in more than one source: a matrix as a picture, and the same as a table. */
QByteArray shared_devices_section(const report_case &the_case, const QList<device_facts> &devices,
                                  const findings_form &form);

/** "paired" and "named": the devices of which that is true. @p count: the list may hold some of them alone. */
QByteArray paired_section(const report_case &the_case, const QList<device_facts> &devices, const findings_form &form);
QByteArray named_section(const report_case &the_case, const QList<device_facts> &devices, const findings_form &form,
                         qint64 count);

/** "flagged": the devices that examiners flagged or noted, and all notes; nothing where there are none. */
QByteArray flagged_section(const report_case &the_case, const QList<device_facts> &devices, const findings_form &form);

#endif
