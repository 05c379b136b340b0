// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_EVIDENCE_LIST_H
#define HOST_REPORT_TABLES_EVIDENCE_LIST_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"

#include <QByteArray>

#include <functional>

/** A file of the evidence that the host looked for: its state, sizes and hashes. */
struct evidence_line
{
    evidence_line(const report_source &of_source, const evidence_file &file);

    const report_source &source;
    QByteArray path;
    QByteArray state;
    QByteArray reason;
    std::optional<qint64> size;
    QByteArray sha256_before;
    QByteArray sha256_after;
    QByteArray sha256_copy;
};

const line_columns<evidence_line> &evidence_columns();

/** Gives all files of the case, leftovers of damaged databases included. */
void for_each_evidence_file(const report_case &the_case, const std::function<void(const line_cells &cells)> &take);

#endif
