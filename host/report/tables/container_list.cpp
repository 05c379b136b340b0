// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/container_list.h"

#include "host/report/reading/common_columns.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

template<QByteArray container_line::*Text>
cell text(const container_line &line)
{
    return cell::of_text_or_null(line.*Text);
}

template<std::optional<qint64> container_line::*Number>
cell number(const container_line &line)
{
    return cell::of_integer(line.*Number);
}

QByteArray text_in(const QJsonObject &json, QLatin1StringView name)
{
    return json.value(name).toString().toUtf8();
}

std::optional<qint64> number_in(const QJsonObject &json, QLatin1StringView name)
{
    const QJsonValue value = json.value(name);
    return value.isDouble() ? std::optional(value.toInteger()) : std::nullopt;
}

} // namespace

container_line::container_line(const report_source &of_source, const QJsonObject &container, const QJsonObject &file)
    : source(of_source)
    , kind(text_in(container, "kind"_L1))
    , format(text_in(container, "format"_L1))
    , path(text_in(file, "path"_L1))
    , size(number_in(file, "size"_L1))
    , modified(text_in(file, "modified"_L1))
    , sha256(text_in(file, "sha256"_L1))
{
    const QJsonObject hashes = container.value("stored_hashes"_L1).toObject();
    stored_md5 = text_in(hashes, "md5"_L1);
    stored_sha1 = text_in(hashes, "sha1"_L1);
    const QJsonObject taken = container.value("volume"_L1).toObject();
    volume = number_in(taken, "number"_L1);
    volume_offset = number_in(taken, "offset"_L1);
    volume_file_system = text_in(taken, "file_system"_L1);
    volume_name = text_in(taken, "name"_L1);
}

const line_columns<container_line> &container_columns()
{
    using group = column_group;
    using one = container_line;
    // clang-format off
    static const line_columns<container_line> columns = source_columns<container_line>() + line_columns<container_line>{
        {{"kind"_ba, group::line, {}, {}, "Kind"_L1, "image, archive, backup or compressed"_L1}, text<&one::kind>},
        {{"format"_ba, group::line, {}, {}, "Format"_L1, "raw, ewf, vmdk, vhd, tar, zip, …"_L1}, text<&one::format>},
        {{"path"_ba, group::line, {}, {}, "File"_L1, "a file that the container is made of"_L1}, text<&one::path>},
        {{"size"_ba, group::line, {}, {}, "Bytes"_L1, "its size before it was opened"_L1}, number<&one::size>},
        {{"modified"_ba, group::line, {}, {}, "Modified"_L1, "its time of modification before it was opened, UTC"_L1}, text<&one::modified>},
        {{"sha256"_ba, group::line, {}, {}, "SHA-256"_L1, "of the file; none where it was not made"_L1}, text<&one::sha256>},
        {{"stored_md5"_ba, group::line, {}, {}, "Stored MD5"_L1, "that the container holds of its content"_L1}, text<&one::stored_md5>},
        {{"stored_sha1"_ba, group::line, {}, {}, "Stored SHA-1"_L1, "that the container holds of its content"_L1}, text<&one::stored_sha1>},
        {{"volume"_ba, group::line, {}, {}, "Volume"_L1, "the number of the volume that the evidence was taken out of"_L1}, number<&one::volume>},
        {{"volume_offset"_ba, group::line, {}, {}, "Offset of the volume"_L1, "bytes from the start of the image"_L1}, number<&one::volume_offset>},
        {{"volume_file_system"_ba, group::line, {}, {}, "File system"_L1, "of the volume"_L1}, text<&one::volume_file_system>},
        {{"volume_name"_ba, group::line, {}, {}, "Name of the volume"_L1, "its label, else the name of its partition"_L1}, text<&one::volume_name>},
    };
    // clang-format on
    return columns;
}

bool has_containers(const report_case &the_case)
{
    return std::any_of(the_case.sources.cbegin(), the_case.sources.cend(),
                       [](const report_source &source) { return source.record.container.isObject(); });
}

void for_each_container_file(const report_case &the_case, const std::function<void(const container_line &line)> &take)
{
    for (const report_source &source : the_case.sources) {
        const QJsonObject container = source.record.container.toObject();
        for (const auto file : container.value("files"_L1).toArray())
            take(container_line(source, container, file.toObject()));
    }
}

QByteArray containers_text(const report_case &the_case)
{
    QByteArray text;
    for_each_container_file(the_case, [&text](const container_line &line) {
        text += "source " + QByteArray::number(line.source.record.number) + ": " + line.kind + ", " + line.format + ", "
                + line.path + ", SHA-256 "
                + (line.sha256.isEmpty() ? line.source.why_no_hash(QString::fromUtf8(line.path)) : line.sha256) + '\n';
    });
    return text.isEmpty() ? text : "Evidence was taken out of these containers:\n" + text;
}
