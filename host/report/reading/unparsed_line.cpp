// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/unparsed_line.h"

#include "host/report/reading/common_columns.h"
#include "host/report/reading/kept_lines.h"
#include "host/report/reading/log_date.h"

using namespace Qt::StringLiterals;

const line_columns<unparsed_line> &unparsed_columns()
{
    using group = column_group;
    // clang-format off
    static const line_columns<unparsed_line> columns =
        source_columns<unparsed_line>()
        + line_columns<unparsed_line>{
            {{"table"_ba, group::source, {}, {}, "Table"_L1, "the table of the result that lines with such words go to"_L1},
             [](const unparsed_line &line) { return cell::of_text_or_null(line.table); }},
            {{"text"_ba, group::line, {}, {}, "Line of the log"_L1, "the line itself, without its line end"_L1},
             [](const unparsed_line &line) { return cell::of_text(line.text); }},
            {{"host_date"_ba, group::line, {}, {}, "Date of the line"_L1, "the date of a line whose form has year and zone, in ISO 8601"_L1},
             [](const unparsed_line &line) { return cell::of_text_or_null(line.date); }},
        }
        + place_columns<unparsed_line>();
    // clang-format on
    return columns;
}

QString for_each_unparsed_line(const report_case &the_case, const report_source &source,
                               const std::function<void(const unparsed_line &line)> &take)
{
    if (source.is_locked)
        return {};
    const QList<evidence_file> &files = source.record.evidence.files;
    const QByteArray log = files.isEmpty() ? QByteArray() : files.first().path.toUtf8();
    const QString path = the_case.layout.source(source.record.number).unparsed_lines();
    return for_each_kept_line(path, [&](const kept_line &kept) {
        const QByteArray text = kept.bytes("text"_L1);
        take({source,
              {log, {}, {}, kept.number("line"_L1), kept.number("offset"_L1)},
              kept.bytes("table"_L1),
              text,
              zoned_date(text)});
    });
}
