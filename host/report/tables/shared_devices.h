// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_SHARED_DEVICES_H
#define HOST_REPORT_TABLES_SHARED_DEVICES_H

#include "host/report/join/device_join.h"
#include "host/report/tables/separated_files.h"

#include <functional>

// Of a list of devices these write the ones that have a shared_number.

const QStringList &shared_columns();

/** The lines of shared.csv and its like: one for each appearance. */
void add_shared_cells(separated_file &file, const report_case &that_case, const QList<joined_device> &devices);

/** The lines of shared.jsonl, each with its line end: one for each device. */
void tell_shared_lines(const report_case &that_case, const QList<joined_device> &devices,
                       const std::function<void(QByteArrayView line)> &tell);

#endif
