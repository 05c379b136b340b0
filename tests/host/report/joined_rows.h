// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_REPORT_JOINED_ROWS_H
#define TESTS_HOST_REPORT_JOINED_ROWS_H

#include "host/report/join/device_join.h"

/** The devices of appearances as a report joins and numbers them; they come source by source. */
inline QList<joined_device> joined_rows(const QList<device_appearance> &rows)
{
    device_join join;
    for (const device_appearance &row : rows)
        join.learn(row);
    device_numbers numbers(join);
    joined_device_list devices(join);
    for (const device_appearance &row : rows)
        devices.add(row, numbers.next(row));
    return devices.devices();
}

#endif
