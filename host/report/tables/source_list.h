// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_SOURCE_LIST_H
#define HOST_REPORT_TABLES_SOURCE_LIST_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"

#include <QByteArray>

#include <functional>

/** A source of the case, as its record has it. */
struct source_line
{
    explicit source_line(const report_source &of_source);

    const report_source &source;
    QByteArray type;
    QByteArray status;
    QByteArray started;
    QByteArray finished;
    QByteArray result_sha256;
    QByteArray messages; ///< joined by " | "
};

const line_columns<source_line> &source_list_columns();

void for_each_source(const report_case &the_case, const std::function<void(const line_cells &cells)> &take);

#endif
