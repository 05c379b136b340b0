// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_LIST_FILES_H
#define HOST_REPORT_LIST_FILES_H

#include "host/report/join/device_join.h"
#include "host/report/report_files.h"
#include "host/report/tables/row_formats.h"
#include "host/report/tables/table_store.h"
#include "host/report/tables/timeline.h"

#include <QStringList>

#include <vector>

// The files of a report besides its page: each function returns why something is missing in them, in plain words.

/** The names of the files of the formats for programs, those of the tables of results first. */
QStringList program_file_names(const report_options &options, const report_case &the_case);

/** shared, evidence_files and the other lists, in each format for programs. */
QStringList write_list_files(const report_options &options, const report_case &the_case,
                             const QList<joined_device> &devices, changed_cells &changes);

/** timeline.jsonl and timeline.csv. */
void write_timeline_files(const report_options &options, const timeline &events, changed_cells &changes);

// A database or a workbook holds all tables and lists of the case: the sources first, then the tables of results, then
// the other lists.

/** The sources. */
void begin_store(table_store &store, const report_case &the_case);

/** Begins a table of results in each store. Returns a function that adds each row of it to all of them. */
row_writer make_store_writer(const std::vector<table_store *> &stores, const QString &table,
                             const QStringList &columns);

/** The other lists. */
QStringList finish_store(table_store &store, const report_case &the_case, const QList<joined_device> &devices,
                         const timeline &events);

#endif
