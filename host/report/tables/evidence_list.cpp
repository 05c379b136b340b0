// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/evidence_list.h"

#include "host/report/reading/common_columns.h"

using namespace Qt::StringLiterals;

namespace {

template<QByteArray evidence_line::*Text>
cell text_or_null(const evidence_line &line)
{
    return cell::of_text_or_null(line.*Text);
}

} // namespace

evidence_line::evidence_line(const report_source &of_source, const evidence_file &file)
    : source(of_source)
    , path(file.path.toUtf8())
    , state(presence_name(file.state).data())
    , reason(file.reason.toUtf8())
    , size(file.before ? std::optional(file.before->size) : std::nullopt)
    , sha256_before(file.before ? file.before->sha256.toLatin1() : QByteArray())
    , sha256_after(file.after ? file.after->sha256.toLatin1() : QByteArray())
    , sha256_copy(file.copy_sha256.toLatin1())
{
}

const line_columns<evidence_line> &evidence_columns()
{
    using group = column_group;
    using row = evidence_line;
    // clang-format off
    static const line_columns<evidence_line> columns = source_columns<evidence_line>() + line_columns<evidence_line>{
        {{"path"_ba, group::line, {}, {}, "File"_L1, "the path of the file, relative to the source"_L1}, text_or_null<&row::path>},
        {{"state"_ba, group::line, {}, {}, "State"_L1, "present, absent, unreadable or refused"_L1}, text_or_null<&row::state>},
        {{"reason"_ba, group::line, {}, {}, "Reason"_L1, "why the file could not be read, or what is odd about it"_L1}, text_or_null<&row::reason>},
        {{"size"_ba, group::line, {}, {}, "Bytes"_L1, "the size before the plug-in read it"_L1}, [](const row &line) { return cell::of_integer(line.size); }},
        {{"sha256_before"_ba, group::line, {}, {}, "SHA-256 before"_L1, "of the file before the plug-in read it"_L1}, text_or_null<&row::sha256_before>},
        {{"sha256_after"_ba, group::line, {}, {}, "SHA-256 after"_L1, "of the file after the plug-in read it"_L1}, text_or_null<&row::sha256_after>},
        {{"sha256_copy"_ba, group::line, {}, {}, "SHA-256 of the copy"_L1, "of the working copy that the host reads"_L1}, text_or_null<&row::sha256_copy>},
    };
    // clang-format on
    return columns;
}

void for_each_evidence_file(const report_case &the_case, const std::function<void(const line_cells &cells)> &take)
{
    for (const report_source &source : the_case.sources) {
        for (const evidence_file &file : source.record.evidence.files)
            take(cells_of(evidence_columns(), evidence_line(source, file)));
    }
}
