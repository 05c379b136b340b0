// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_SALVAGE_LINE_H
#define HOST_REPORT_READING_SALVAGE_LINE_H

#include "host/report/reading/kept_lines.h"
#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"

#include <QString>

#include <functional>

/** A row that the host found on an intact page of a damaged database. It is none of the result's. */
struct salvage_line
{
    const report_source &source;
    const kept_line &kept;
};

const line_columns<salvage_line> &salvage_columns();

/** Gives those that the host has kept of a source. Returns why not all of them could be read; empty if all could. */
QString for_each_salvaged_row(const report_case &the_case, const report_source &source,
                              const std::function<void(const salvage_line &line)> &take);

#endif
