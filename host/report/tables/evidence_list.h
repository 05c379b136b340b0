// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_EVIDENCE_LIST_H
#define HOST_REPORT_TABLES_EVIDENCE_LIST_H

#include "host/report/tables/separated_files.h"

#include <functional>

// The files of the evidence that the host looked for: their state, sizes and hashes, leftovers of damaged databases
// included.

const QStringList &evidence_columns();

/** The lines of evidence_files.csv and its like. */
void add_evidence_cells(separated_file &file, const report_case &that_case);

/** The lines of evidence_files.jsonl, each with its line end. */
void tell_evidence_lines(const report_case &that_case, const std::function<void(QByteArrayView line)> &tell);

#endif
