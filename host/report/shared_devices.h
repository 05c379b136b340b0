// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_SHARED_DEVICES_H
#define HOST_REPORT_SHARED_DEVICES_H

#include "host/report/device_join.h"
#include "host/report/separated_files.h"

/** Writes shared.csv or its like: the devices that more than one source knows, a line for each appearance. */
void write_shared_cells(const report_case &that_case, const device_join &join, const QList<joined_device> &devices,
                        const QString &folder, const QString &name, const separated_form &form, changed_cells &changes);

/** Writes shared.jsonl: a line for each device. */
void write_shared_lines(const report_case &that_case, const device_join &join, const QList<joined_device> &devices,
                        const QString &path);

#endif
