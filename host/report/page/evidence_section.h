// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_EVIDENCE_SECTION_H
#define HOST_REPORT_PAGE_EVIDENCE_SECTION_H

#include "host/report/reading/report_case.h"

#include <QByteArray>

/** Sources with status, rows and messages; the files that were there, and which were not. */
QByteArray evidence_section(const report_case &the_case);

/** The sources alone, in short, no more than @p most_rows. */
QByteArray brief_sources_table(const report_case &the_case, qsizetype most_rows);

/** Whether every file that was there had the same hash before and after. */
bool is_evidence_unchanged(const report_case &the_case);

#endif
