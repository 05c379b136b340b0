// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_UNPARSED_LINE_H
#define HOST_REPORT_READING_UNPARSED_LINE_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"
#include "host/report/reading/row_place.h"

#include <QByteArray>
#include <QString>

#include <functional>

/** A line of a log that has the words of a device and gave no row. */
struct unparsed_line
{
    const report_source &source;
    row_place evidence_place;
    QByteArray table; ///< of the result, that such lines go to
    QByteArray text;
    QByteArray date; ///< zoned_date()

    const row_place &place() const
    {
        return evidence_place;
    }
};

const line_columns<unparsed_line> &unparsed_columns();

/** Gives those that the host has kept of a source. Returns why not all of them could be read; empty if all could. */
QString for_each_unparsed_line(const report_case &the_case, const report_source &source,
                               const std::function<void(const unparsed_line &line)> &take);

#endif
