// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_REPORT_FILES_H
#define HOST_REPORT_REPORT_FILES_H

#include "host/report/tables/row_formats.h"
#include "host/report/tables/timeline.h"

#include <QList>
#include <QString>
#include <QStringList>

struct report_options
{
    QString case_directory; ///< absolute
    QString output;         ///< absolute
    QList<report_format> formats;
    bool force = false; ///< files of an earlier report may be replaced
    bool split = false; ///< HTML: a page for each source, as there is for more than 200,000 rows
    bool brief = false; ///< the case in short besides, as brief.html
    cell_options cells;
    QString vendors; ///< absolute; a list of vendors like oui.txt; empty: none
    timeline_options times;
};

struct report_outcome
{
    QStringList files;        ///< names in the output folder
    QStringList shortcomings; ///< what the case or the report lacks, in plain words
    QStringList notes;        ///< what else the examiner should know
};

/**
 * Writes reports of a case into a folder, from the case alone: no evidence is opened. Throws host_error: input when
 * there is no case, refused when a file is in the way or the folder lies in the evidence, io when a file
 * cannot be written.
 */
report_outcome write_report(const report_options &options);

#endif
