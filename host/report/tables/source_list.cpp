// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/source_list.h"

#include "host/report/reading/common_columns.h"

using namespace Qt::StringLiterals;

namespace {

template<QByteArray source_line::*Text>
cell text(const source_line &line)
{
    return cell::of_text_or_null(line.*Text);
}

QByteArray joined_messages(const source_record &record)
{
    QByteArrayList texts;
    for (const run_message &message : record.messages)
        texts.append(message.text.toUtf8());
    return texts.join(" | ");
}

} // namespace

source_line::source_line(const report_source &of_source)
    : source(of_source)
    , type(of_source.record.type.toUtf8())
    , status(status_name(of_source.record.status).data())
    , started(of_source.record.started.toUtf8())
    , finished(of_source.record.finished.toUtf8())
    , result_sha256(of_source.record.result_sha256.toUtf8())
    , messages(joined_messages(of_source.record))
{
}

const line_columns<source_line> &source_list_columns()
{
    using group = column_group;
    using one = source_line;
    // clang-format off
    static const line_columns<source_line> columns =
        source_columns<source_line>()
        + line_columns<source_line>{
            {{"type"_ba, group::line, {}, {}, "Kind"_L1, "what kind of source it is"_L1}, text<&one::type>},
            {{"status"_ba, group::line, {}, {}, "State"_L1, "how its run ended"_L1}, text<&one::status>},
            {{"started"_ba, group::line, {}, {}, "Started"_L1, "when its run began, UTC"_L1}, text<&one::started>},
            {{"finished"_ba, group::line, {}, {}, "Finished"_L1, "when its run ended, UTC"_L1}, text<&one::finished>},
            {{"result_sha256"_ba, group::line, {}, {}, "SHA-256 of the result"_L1, "of the result database"_L1}, text<&one::result_sha256>},
            {{"messages"_ba, group::line, {}, {}, "Messages"_L1, "what the run said of it, separated by |"_L1}, text<&one::messages>},
        };
    // clang-format on
    return columns;
}

void for_each_source(const report_case &the_case, const std::function<void(const line_cells &cells)> &take)
{
    for (const report_source &source : the_case.sources)
        take(cells_of(source_list_columns(), source_line(source)));
}
