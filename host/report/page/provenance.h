// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_PROVENANCE_H
#define HOST_REPORT_PAGE_PROVENANCE_H

#include "host/report/reading/report_case.h"

#include <QByteArray>

/** What made the case, on what, when, and how it can be verified: whatever the manifest says of it. */
QByteArray provenance_section(const report_case &the_case);

/** The manifest's hash, and the command that verifies the case by it. */
QByteArray manifest_facts(const report_case &the_case);

#endif
