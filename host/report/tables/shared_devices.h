// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_SHARED_DEVICES_H
#define HOST_REPORT_TABLES_SHARED_DEVICES_H

#include "host/report/join/device_join.h"
#include "host/report/reading/report_column.h"

#include <functional>

// Of a list of devices these give the ones that have a shared_number.

/** One appearance of a device that several sources know. */
struct shared_line
{
    const joined_device &device;
    const device_appearance &appearance;
    const report_source &source;
    QByteArray joined_by;
    QByteArray table;
    note_marks marks; ///< of the device

    const row_place &place() const
    {
        return appearance.place;
    }
};

const line_columns<shared_line> &shared_columns();

/** The lines of shared.csv and its like: one for each appearance. */
void for_each_shared_appearance(const report_case &the_case, const QList<joined_device> &devices,
                                const std::function<void(const line_cells &cells)> &take);

/** The lines of shared.jsonl, each with its line end: one for each device. */
void for_each_shared_device(const report_case &the_case, const QList<joined_device> &devices,
                            const std::function<void(QByteArrayView line)> &take);

#endif
