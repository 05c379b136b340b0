// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_LIST_FILES_H
#define HOST_REPORT_LIST_FILES_H

#include "host/report/join/device_join.h"
#include "host/report/report_files.h"
#include "host/report/tables/table_store.h"
#include "host/report/tables/timeline.h"

#include <QStringList>

// The files of a report besides its page: each function returns why something is missing in them, in plain words.

/** The names of the files of the formats for programs, those of the tables of results first. */
QStringList program_file_names(const report_options &options, const report_case &that_case);

/** shared, evidence_files and the other lists, in each format for programs. */
QStringList write_list_files(const report_options &options, const report_case &that_case,
                             const QList<joined_device> &devices, changed_cells &changes);

/** timeline.jsonl and timeline.csv. */
void write_timeline_files(const report_options &options, const timeline &events, changed_cells &changes);

/** report.sqlite or report.xlsx: all tables and lists of the case. @p events may be null: they hold no timeline then.
 */
QStringList fill_store(table_store &store, const report_case &that_case, const QList<joined_device> &devices,
                       const timeline &events);

#endif
