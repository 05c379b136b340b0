// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/ios_lines.h"

#include "host/source/device_phrases.h"
#include "host/source/log_date.h"
#include "host/source/macos_databases.h"
#include "host/text/json_text.h"

#include <algorithm>

#include <string.h>

using namespace Qt::StringLiterals;

namespace {

/** What a line holds; the places are those of has_marker. */
constexpr QLatin1StringView markers[] = {found_device_phrase, active_device_phrase, notice_phrase};

/** A kind of line: the marker that it holds, and the one that it needs besides to become a row. */
struct line_kind
{
    QLatin1StringView table;
    std::size_t rare_marker;
    std::size_t other_marker; ///< the same where there is only one
};

constexpr line_kind line_kinds[] = {
    {other_devices_database.result_table, 0, 0},
    {paired_devices_database.result_table, 1, 2},
};

constexpr qsizetype longest_marker = found_device_phrase.size();

/** Place of the marker in the bytes from @p from on; their size if it is not there. */
qsizetype find(QByteArrayView bytes, qsizetype from, QLatin1StringView marker)
{
    const void *hit = memmem(bytes.data() + from, size_t(bytes.size() - from), marker.data(), size_t(marker.size()));
    return hit ? static_cast<const char *>(hit) - bytes.data() : bytes.size();
}

bool contains(QByteArrayView bytes, QLatin1StringView marker)
{
    return find(bytes, 0, marker) < bytes.size();
}

/** Counts in stretches whose counts fit a byte: many bytes of them are compared at once. */
qint64 line_ends_in(QByteArrayView bytes)
{
    constexpr qsizetype stretch_bytes = 128;
    qint64 count = 0;
    for (; bytes.size() >= stretch_bytes; bytes = bytes.sliced(stretch_bytes)) {
        unsigned char in_stretch = 0;
        for (qsizetype i = 0; i < stretch_bytes; ++i)
            in_stretch = static_cast<unsigned char>(in_stretch + (bytes.data()[i] == '\n'));
        count += in_stretch;
    }
    return count + std::count(bytes.begin(), bytes.end(), '\n');
}

} // namespace

ios_line_finder::ios_line_finder(std::function<void(const ios_line &line)> on_line)
    : take(std::move(on_line))
{
}

void ios_line_finder::add(QByteArrayView block)
{
    if (open_size > 0) {
        const qsizetype end = block.indexOf('\n');
        add_to_open_line(end < 0 ? block : block.first(end));
        if (end < 0)
            return;
        end_open_line();
        ++offset;
        ++number;
        block = block.sliced(end + 1);
    }
    const qsizetype end = block.lastIndexOf('\n') + 1;
    add_whole_lines(block.first(end));
    add_to_open_line(block.sliced(end));
}

void ios_line_finder::finish()
{
    if (open_size > 0)
        end_open_line();
}

void ios_line_finder::add_whole_lines(QByteArrayView lines)
{
    const qint64 block_offset = offset;
    qsizetype position = 0; // start of a line
    std::array<qsizetype, std::size(line_kinds)> hits = {};
    hits.fill(-1);
    for (;;) {
        for (std::size_t kind = 0; kind < hits.size(); ++kind) {
            if (hits[kind] < position)
                hits[kind] = find(lines, position, markers[line_kinds[kind].rare_marker]);
        }
        const qsizetype hit = *std::min_element(hits.begin(), hits.end());
        if (hit == lines.size())
            break;
        const qsizetype begin = lines.first(hit).lastIndexOf('\n') + 1;
        const qsizetype end = lines.indexOf('\n', hit);
        const QByteArrayView line = lines.sliced(begin, end - begin);
        std::array<bool, marker_count> has_marker = {};
        for (std::size_t i = 0; i < marker_count; ++i)
            has_marker[i] = contains(line, markers[i]);
        number += line_ends_in(lines.sliced(position, begin - position));
        emit_line(block_offset + begin, line.first(qMin<qsizetype>(line.size(), ios_line::most_bytes)), line.size(),
                  has_marker);
        ++number;
        position = end + 1;
    }
    number += line_ends_in(lines.sliced(position));
    offset += lines.size();
}

void ios_line_finder::add_to_open_line(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return;
    const QByteArray border = open_end + bytes.first(qMin(bytes.size(), longest_marker)).toByteArray();
    for (std::size_t i = 0; i < marker_count; ++i)
        open_markers[i] = open_markers[i] || contains(border, markers[i]) || contains(bytes, markers[i]);
    open_start.append(bytes.first(qMin<qsizetype>(bytes.size(), ios_line::most_bytes - open_start.size())));
    open_end.append(bytes.last(qMin(bytes.size(), longest_marker)));
    open_end = open_end.last(qMin(open_end.size(), longest_marker));
    open_size += bytes.size();
    offset += bytes.size();
}

void ios_line_finder::end_open_line()
{
    emit_line(offset - open_size, open_start, open_size, open_markers);
    open_start.clear();
    open_end.clear();
    open_size = 0;
    open_markers = {};
}

void ios_line_finder::emit_line(qint64 line_offset, QByteArrayView start, qint64 size,
                                const std::array<bool, marker_count> &has_marker)
{
    for (const line_kind &kind : line_kinds) {
        if (has_marker[kind.rare_marker])
            take({number, line_offset, kind.table, start, size, has_marker[kind.other_marker]});
    }
}

ios_line_writer::ios_line_writer(const QString &path)
    : file(path)
{
}

void ios_line_writer::add(const ios_line &line)
{
    QByteArray json = "{\"line\":" + QByteArray::number(line.number);
    json += ",\"offset\":" + QByteArray::number(line.offset);
    json += ",\"table\":\"" + QByteArray(line.table.data()) + "\",\"text\":";
    append_json_bytes(json, line.start);
    if (line.size > line.start.size())
        json += ",\"size\":" + QByteArray::number(line.size);
    if (const QByteArray date = date_with_zone(line.start); !date.isEmpty())
        json += ",\"host_date\":\"" + date + '"';
    json += "}\n";
    file.add(json);
}

void ios_line_writer::commit()
{
    file.commit();
}
