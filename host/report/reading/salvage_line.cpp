// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/salvage_line.h"

#include "host/report/reading/common_columns.h"

using namespace Qt::StringLiterals;

const line_columns<salvage_line> &salvage_columns()
{
    static const line_columns<salvage_line> columns =
        source_columns<salvage_line>()
        + line_columns<salvage_line>{
            {{"salvaged"_ba,
              column_group::line,
              {},
              true,
              "Salvaged row"_L1,
              "a row on an intact page of a damaged database, and where it was found; it is none of the result's rows"_L1},
             [](const salvage_line &line) { return cell::of_text(line.kept.text); }},
        };
    return columns;
}

QString for_each_salvaged_row(const report_case &the_case, const report_source &source,
                              const std::function<void(const salvage_line &line)> &take)
{
    if (source.is_locked)
        return {};
    const QString path = the_case.layout.source(source.record.number).salvage();
    return for_each_kept_line(path, [&](const kept_line &kept) { take({source, kept}); });
}
