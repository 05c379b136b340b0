// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_REPORT_README_H
#define HOST_REPORT_REPORT_README_H

#include "host/report/report_files.h"

/** README.txt beside the files for programs: how values stand in them, and which cells are not the value itself. */
QByteArray readme(const report_case &the_case, const report_options &options, const changed_cells &changes,
                  const QStringList &notes);

#endif
