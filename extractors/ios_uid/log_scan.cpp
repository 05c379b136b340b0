// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_scan.h"

#include <QByteArrayView>

#include <algorithm>
#include <limits>

#include <string.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 end_of_file = std::numeric_limits<qint64>::max();

/** One block of a file, moved to where it is needed. Read, not mapped: a file that shrinks must not end the host. */
class file_window
{
public:
    file_window(QIODevice &source, qsizetype block_bytes)
        : file(source)
        , block(block_bytes, Qt::Uninitialized)
    {
    }

    /** The bytes from @p offset on, at least @p least of them (no more than a block) unless the file ends before. */
    QByteArrayView from(qint64 offset, qsizetype least)
    {
        if (offset < begin || offset + least > end())
            load(offset);
        return QByteArrayView(block).first(filled).sliced(offset - begin);
    }

    /** Bytes right before @p offset, which is not 0: as many as are at hand, or a block. */
    QByteArrayView before(qint64 offset)
    {
        if (offset <= begin || offset > end())
            load(std::max<qint64>(offset - block.size(), 0));
        return QByteArrayView(block).first(std::min<qint64>(offset - begin, filled));
    }

    /** Offset behind the last byte at hand. */
    qint64 end() const
    {
        return begin + filled;
    }

private:
    void load(qint64 offset)
    {
        begin = offset;
        filled = 0;
        if (!file.seek(offset))
            return;
        qint64 count = 0;
        while ((count = file.read(block.data() + filled, block.size() - filled)) > 0)
            filled += count;
    }

    QIODevice &file;
    QByteArray block;
    qint64 begin = 0;
    qint64 filled = 0;
};

class line_finder
{
public:
    line_finder(QIODevice &file, const bool &cancel_flag, qsizetype block_bytes)
        : window(file, block_bytes)
        , cancelled(cancel_flag)
    {
    }

    bool is_end(qint64 offset)
    {
        return window.from(offset, 1).isEmpty();
    }

    /** Offset of the first @p text in [@p from, @p to); -1 when there is none or the search was cancelled. */
    qint64 find(QLatin1StringView text, qint64 from, qint64 to)
    {
        while (!cancelled) {
            const QByteArrayView ahead = window.from(from, text.size());
            const QByteArrayView bytes = ahead.first(std::min<qint64>(ahead.size(), to - from));
            if (bytes.size() < text.size())
                return -1;
            const void *hit = memmem(bytes.data(), size_t(bytes.size()), text.data(), size_t(text.size()));
            if (hit)
                return from + (static_cast<const char *>(hit) - bytes.data());
            from += bytes.size() - text.size() + 1; // a text may begin in this block and end in the next
        }
        return -1;
    }

    /** Start of the line around @p offset; it does not lie before @p from, which is the start of a line. */
    qint64 line_begin(qint64 from, qint64 offset)
    {
        while (offset > from) {
            const QByteArrayView bytes = window.before(offset);
            if (bytes.isEmpty())
                break; // a file that shrinks
            const qsizetype newline = bytes.lastIndexOf('\n');
            offset -= bytes.size();
            if (newline >= 0)
                return std::max(from, offset + newline + 1);
        }
        return from;
    }

    /** Offset behind the line around @p offset. */
    qint64 line_end(qint64 offset)
    {
        const qint64 newline = find("\n"_L1, offset, end_of_file);
        return newline < 0 ? window.end() : newline + 1;
    }

private:
    file_window window;
    const bool &cancelled;
};

qsizetype longest(std::span<const QLatin1StringView> markers)
{
    qsizetype size = 0;
    for (const QLatin1StringView marker : markers)
        size = std::max(size, marker.size());
    return size;
}

} // namespace

bool scan_log(QIODevice &file, std::span<const QLatin1StringView> markers, const bool &cancelled,
              const std::function<void(const QByteArray &)> &on_line, qsizetype block_bytes)
{
    line_finder log(file, cancelled, std::max(block_bytes, longest(markers)));
    qint64 position = 0;
    while (!log.is_end(position)) {
        const qint64 hit = log.find(markers.front(), position, end_of_file);
        if (hit < 0)
            return !cancelled;

        const qint64 begin = log.line_begin(position, hit);
        const qint64 end = log.line_end(hit);
        const auto is_in_line = [&](QLatin1StringView marker) { return log.find(marker, begin, end) >= 0; };
        const bool has_all = std::all_of(markers.begin() + 1, markers.end(), is_in_line);
        if (cancelled)
            return false; // what was found may be cut short
        if (has_all && file.seek(begin))
            on_line(file.read(end - begin));
        position = end;
    }
    return true;
}
