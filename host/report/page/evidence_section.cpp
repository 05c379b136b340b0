// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/evidence_section.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QByteArray number_text(const std::optional<qint64> &number)
{
    return number ? grouped_digits(*number) : QByteArray("unknown");
}

/** Of each table, and of the lists. */
QByteArrayList counts_of(const source_record &record)
{
    QByteArrayList counts;
    for (const table_rows &table : record.rows)
        counts.append(html_text(table.table) + ": " + number_text(table.stored)
                      + (table.found ? " of " + number_text(table.found) : QByteArray())
                      + (table.devices ? " (sightings of " + number_text(table.devices) + " devices)" : QByteArray()));
    if (record.host_devices.isDouble())
        counts.append("host_devices: " + grouped_digits(record.host_devices.toInteger()));
    return counts;
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
QByteArray path_html(const QString &path)
{
    return "<bdi>" + html_text(path).replace('/', "/<wbr>") + "</bdi>";
}

QByteArray path_of(const evidence_file &file)
{
    return path_html(file.path);
}

/** Where a file stood in the container that it was taken out of. */
QByteArray origin_of(const evidence_file &file)
{
    if (!file.origin.isObject())
        return {};
    const QJsonObject origin = file.origin.toObject();
    QByteArray html = "<small>taken out of the container: " + path_html(origin.value("path"_L1).toString());
    if (origin.value("inode"_L1).isDouble())
        html += ", inode " + QByteArray::number(origin.value("inode"_L1).toInteger());
    if (origin.value("modified"_L1).isString())
        html += ", modified there " + html_text(origin.value("modified"_L1).toString());
    return html + "</small>";
}

QByteArray modified_of(const evidence_file &file)
{
    const QByteArray time = file.before ? html_text(file.before->modified) : QByteArray();
    return time.isEmpty() ? time : "<small>modified " + html_whole(time) + "</small>";
}

QByteArray state_of(const evidence_file &file)
{
    const QByteArray remark = remark_of(file);
    return html_text(presence_name(file.state)) + (remark.isEmpty() ? remark : "<br>" + remark);
}

QByteArray present_files(const report_case &the_case)
{
    QByteArray rows;
    for (const report_source &source : the_case.sources) {
        for (const evidence_file &file : source.record.evidence.files) {
            if (file.state != evidence_file::presence::absent)
                rows += html_row({QByteArray::number(source.record.number),
                                  path_of(file) + modified_of(file) + origin_of(file), state_of(file),
                                  file.before ? grouped_digits(file.before->size) : QByteArray(), hashes_of(file)});
        }
    }
    return html_static_table("Files of the evidence", {"Source", "Path in the source", "State", "Bytes", "SHA-256"},
                             rows);
}

QByteArray absent_files(const report_case &the_case)
{
    QByteArray items;
    for (const report_source &source : the_case.sources) {
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

QByteArray hash_or_why_none(const report_source &source, const QJsonObject &file)
{
    const QString hash = file.value("sha256"_L1).toString();
    return hash.isEmpty() ? source.why_no_hash(file.value("path"_L1).toString()) : html_hash(hash);
}

/** "volume 2 at byte 1,048,576, ntfs, System" */
QByteArray volume_of(const QJsonObject &container)
{
    const QJsonObject volume = container.value("volume"_L1).toObject();
    if (volume.isEmpty())
        return {};
    QByteArray html = "<br>volume " + QByteArray::number(volume.value("number"_L1).toInteger()) + " at byte "
                      + grouped_digits(volume.value("offset"_L1).toInteger());
    for (const QLatin1StringView member : {"file_system"_L1, "name"_L1}) {
        const QString text = volume.value(member).toString();
        html += text.isEmpty() ? QByteArray() : ", <bdi>" + html_text(text) + "</bdi>";
    }
    return html;
}

QByteArray stored_hashes_of(const QJsonObject &container)
{
    const QJsonObject stored = container.value("stored_hashes"_L1).toObject();
    QByteArray html;
    for (const auto &[member, name] : {std::pair("md5"_L1, "MD5"), std::pair("sha1"_L1, "SHA-1")}) {
        const QString hash = stored.value(member).toString();
        html += hash.isEmpty() ? QByteArray() : "<br>" + QByteArray(name) + " that it holds itself: " + html_hash(hash);
    }
    return html;
}

/** A line for each file of a container; what the container is stands with the first. */
QByteArray container_rows(const report_source &source)
{
    const QJsonObject container = source.record.container.toObject();
    QByteArray about = html_text(container.value("kind"_L1).toString()) + ", "
                       + html_text(container.value("format"_L1).toString()) + volume_of(container)
                       + stored_hashes_of(container);
    QByteArray rows;
    for (const auto value : container.value("files"_L1).toArray()) {
        const QJsonObject file = value.toObject();
        const QByteArray modified = html_text(file.value("modified"_L1).toString());
        rows += html_row({QByteArray::number(source.record.number), about,
                          path_html(file.value("path"_L1).toString())
                              + (modified.isEmpty() ? modified : "<small>modified " + modified + "</small>"),
                          grouped_digits(file.value("size"_L1).toInteger()), hash_or_why_none(source, file)});
        about.clear();
    }
    return rows;
}

QByteArray containers_table(const report_case &the_case)
{
    QByteArray rows;
    for (const report_source &source : the_case.sources) {
        if (source.record.container.isObject())
            rows += container_rows(source);
    }
    return rows.isEmpty() ? rows
                          : html_static_table("Containers that evidence was taken out of",
                                              {"Source", "Container", "File", "Bytes", "SHA-256"}, rows);
}

/** What the plug-in took the source for, where its kind is called otherwise. */
QByteArray type_of(const source_record &record)
{
    const bool is_said = !record.driven_as.isEmpty() && record.driven_as != record.type;
    return html_text(record.type) + (is_said ? "<br>read as " + html_text(record.driven_as) : QByteArray());
}

/** What kept the process that read the source in its place; empty for records that do not say. */
QByteArray confinement_of(const source_record &record)
{
    if (!record.confinement.isObject())
        return {};
    const QJsonObject confinement = record.confinement.toObject();
    const QJsonValue landlock = confinement.value("landlock"_L1);
    return "<br>confined by "
           + (landlock.isDouble() ? "Landlock " + QByteArray::number(landlock.toInteger()) : QByteArray("no Landlock"))
           + (confinement.value("seccomp"_L1).toBool() ? ", seccomp" : ", no seccomp");
}

const QByteArrayList source_headings{"Number",
                                     "Name",
                                     "Type",
                                     "Status",
                                     "Rows stored, of those found",
                                     "SHA-256 of the result"};

QByteArray sources_table(const report_case &the_case)
{
    QByteArray rows;
    for (const report_source &source : the_case.sources)
        rows += html_row({QByteArray::number(source.record.number), "<bdi>" + html_text(source.name) + "</bdi>",
                          type_of(source.record),
                          html_text(status_name(source.record.status)) + confinement_of(source.record),
                          counts_of(source.record).join("<br>"), html_hash(source.record.result_sha256)});
    return html_static_table("Sources", source_headings, rows);
}

} // namespace

bool is_evidence_unchanged(const report_case &the_case)
{
    return std::none_of(the_case.sources.cbegin(), the_case.sources.cend(), [](const report_source &source) {
        const QList<evidence_file> &files = source.record.evidence.files;
        return source.record.status == source_status::evidence_changed
               || std::any_of(files.cbegin(), files.cend(), is_changed);
    });
}

QByteArray brief_sources_table(const report_case &the_case, qsizetype most_rows)
{
    constexpr qsizetype most_columns = 60;
    QByteArray rows;
    for (const report_source &source : the_case.sources.first(std::min(the_case.sources.size(), most_rows)))
        rows += html_row({QByteArray::number(source.record.number), html_evidence(source.name.toUtf8(), most_columns),
                          html_text(source.record.type), html_text(status_name(source.record.status)),
                          counts_of(source.record).join(", "), html_hash(source.record.result_sha256)});
    const qsizetype left = the_case.sources.size() - most_rows;
    return html_titled_table("Sources", source_headings, rows)
           + (left > 0 ? "<p>And " + grouped_digits(left) + " more sources.</p>\n" : QByteArray());
}

QByteArray evidence_section(const report_case &the_case)
{
    QByteArray messages;
    for (const report_source &source : the_case.sources) {
        const QByteArray own = messages_of(source.record);
        if (!own.isEmpty())
            messages += "<li>Source " + QByteArray::number(source.record.number) + ": <bdi>" + html_text(source.name)
                        + "</bdi>" + own + "</li>\n";
    }
    if (!messages.isEmpty())
        messages = "<h3>What was said while they were read</h3><ul>\n" + messages + "</ul>\n";
    return html_section("evidence", "Evidence",
                        sources_table(the_case) + messages + containers_table(the_case) + present_files(the_case)
                            + absent_files(the_case));
}
