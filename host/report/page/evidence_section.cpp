// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/evidence_section.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

QByteArray number_text(const std::optional<qint64> &number)
{
    return number ? grouped_digits(*number) : QByteArray("unknown");
}

QByteArray counts_of(const source_record &record)
{
    QByteArrayList counts;
    for (const table_rows &table : record.rows)
        counts.append(html_text(table.table) + ": " + number_text(table.stored)
                      + (table.found ? " of " + number_text(table.found) : QByteArray()));
    return counts.join("<br>");
}

QByteArray messages_of(const source_record &record)
{
    QByteArray items;
    for (const run_message &message : record.messages)
        items += "<li>" + html_text(message.text) + "</li>";
    return items.isEmpty() ? items : "<ul>" + items + "</ul>";
}

bool is_changed(const evidence_file &file)
{
    const QString before = file.before ? file.before->sha256 : QString();
    const QString after = file.after ? file.after->sha256 : QString();
    return before != after;
}

/** One hash where it is the same before and after. */
QByteArray hashes_of(const evidence_file &file)
{
    const QByteArray before = html_hash(file.before ? file.before->sha256 : QString());
    if (!is_changed(file))
        return before + (file.before && !file.before->sha256.isEmpty() ? "<br>the same before and after" : "");
    return "before " + before + "<br>after " + html_hash(file.after ? file.after->sha256 : QString());
}

QByteArray remark_of(const evidence_file &file)
{
    if (file.reason.isEmpty() && file.path.endsWith(".corrupt"_L1))
        return "a leftover of a damaged database; its content is not parsed";
    return html_text(file.reason);
}

/** A path may go on in the next line behind a folder. */
QByteArray path_of(const evidence_file &file)
{
    return "<bdi>" + html_text(file.path).replace('/', "/<wbr>") + "</bdi>";
}

QByteArray modified_of(const evidence_file &file)
{
    const QByteArray time = file.before ? html_text(file.before->modified) : QByteArray();
    return time.isEmpty() ? time : "<small>modified " + time + "</small>";
}

QByteArray state_of(const evidence_file &file)
{
    const QByteArray remark = remark_of(file);
    return html_text(presence_name(file.state)) + (remark.isEmpty() ? remark : "<br>" + remark);
}

QByteArray present_files(const report_case &that_case)
{
    QByteArray rows;
    for (const report_source &source : that_case.sources) {
        for (const evidence_file &file : source.record.evidence.files) {
            if (file.state != evidence_file::presence::absent)
                rows += html_row({QByteArray::number(source.record.number), path_of(file) + modified_of(file),
                                  state_of(file), file.before ? grouped_digits(file.before->size) : QByteArray(),
                                  hashes_of(file)});
        }
    }
    return html_static_table("Files of the evidence", {"Source", "Path in the source", "State", "Bytes", "SHA-256"},
                             rows);
}

QByteArray absent_files(const report_case &that_case)
{
    QByteArray items;
    for (const report_source &source : that_case.sources) {
        QByteArrayList paths;
        for (const evidence_file &file : source.record.evidence.files) {
            if (file.state == evidence_file::presence::absent)
                paths.append(path_of(file));
        }
        if (!paths.isEmpty())
            items += "<li>Source " + QByteArray::number(source.record.number)
                     + " has none of these: " + paths.join(", ") + ".</li>\n";
    }
    return items.isEmpty() ? items : "<h3>Looked for and not there</h3><ul class=\"paths\">\n" + items + "</ul>\n";
}

} // namespace

bool is_evidence_unchanged(const report_case &that_case)
{
    return std::none_of(that_case.sources.cbegin(), that_case.sources.cend(), [](const report_source &source) {
        const QList<evidence_file> &files = source.record.evidence.files;
        return source.record.status == source_status::evidence_changed
               || std::any_of(files.cbegin(), files.cend(), is_changed);
    });
}

QByteArray sources_table(const report_case &that_case, qsizetype most_rows)
{
    const bool is_whole = that_case.sources.size() <= most_rows;
    QByteArray rows;
    for (const report_source &source : that_case.sources.first(std::min(that_case.sources.size(), most_rows)))
        rows += html_row({QByteArray::number(source.record.number), "<bdi>" + html_text(source.name) + "</bdi>",
                          html_text(source.record.type), html_text(status_name(source.record.status)),
                          counts_of(source.record), html_hash(source.record.result_sha256)});
    return html_static_table("Sources",
                             {"Number", "Name", "Type", "Status", "Rows stored, of those found",
                              "SHA-256 of the result"},
                             rows)
           + (is_whole ? QByteArray()
                       : "<p>And " + grouped_digits(that_case.sources.size() - most_rows) + " more sources.</p>\n");
}

QByteArray evidence_section(const report_case &that_case)
{
    QByteArray messages;
    for (const report_source &source : that_case.sources) {
        const QByteArray own = messages_of(source.record);
        if (!own.isEmpty())
            messages += "<li>Source " + QByteArray::number(source.record.number) + ": <bdi>" + html_text(source.name)
                        + "</bdi>" + own + "</li>\n";
    }
    if (!messages.isEmpty())
        messages = "<h3>What was said while they were read</h3><ul>\n" + messages + "</ul>\n";
    return html_section("evidence", "Evidence",
                        sources_table(that_case, std::numeric_limits<qsizetype>::max()) + messages
                            + present_files(that_case) + absent_files(that_case));
}
