// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_scan.h"

#include <QByteArrayView>

#include <algorithm>
#include <cstring>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 end_of_file = std::numeric_limits<qint64>::max();

/**
 * A block of a file, moved to where it is needed, and a few bytes before it. Blocks begin at multiples of their size,
 * since copying from the system's pages is slower at other places. Read, not mapped: a file that shrinks must not end
 * the process.
 */
class file_window
{
public:
    file_window(QIODevice &source, qsizetype size_of_block, qsizetype most_bytes_kept)
        : file(source)
        , block_bytes(size_of_block)
        , most_kept(most_bytes_kept)
        , buffer(most_bytes_kept + size_of_block, Qt::Uninitialized)
    {
    }

    /** The bytes from @p offset on. At least @p least, which may be one more than are kept, unless the file ends. */
    QByteArrayView from(qint64 offset, qsizetype least)
    {
        if (offset < begin || offset > end())
            load(offset - offset % block_bytes, 0);
        bool goes_on = offset <= end();
        while (goes_on && offset + least > end())
            goes_on = load(end(), end() - offset);
        return at_hand().sliced(std::min<qint64>(offset - begin, filled));
    }

    /** Bytes right before @p offset, which is not 0: as many as are at hand, or those of a block. */
    QByteArrayView before(qint64 offset)
    {
        if (offset <= begin || offset > end())
            load((offset - 1) - (offset - 1) % block_bytes, 0);
        return at_hand().first(std::min<qint64>(offset - begin, filled));
    }

    /** Offset behind the last byte at hand. */
    qint64 end() const
    {
        return begin + filled;
    }

private:
    QByteArrayView at_hand() const
    {
        return QByteArrayView(buffer).sliced(first, filled);
    }

    /** Reads a block behind the last @p kept bytes. False when the file has none there. */
    bool load(qint64 offset, qsizetype kept)
    {
        char *const block = buffer.data() + most_kept;
        std::memmove(block - kept, at_hand().last(kept).data(), size_t(kept));
        first = most_kept - kept;
        begin = offset - kept;
        filled = kept;
        if (!file.seek(offset))
            return false;
        qint64 count = 0;
        while ((count = file.read(block + (end() - offset), block_bytes - (end() - offset))) > 0)
            filled += count;
        return filled > kept;
    }

    QIODevice &file;
    const qsizetype block_bytes;
    const qsizetype most_kept;
    QByteArray buffer;
    qsizetype first = 0; // of the bytes at hand, in the buffer
    qsizetype filled = 0;
    qint64 begin = 0; // their place in the file
};

/** A text to search for. It is found by one of its bytes: memchr() is faster than any search for a whole text. */
struct searched_text
{
    QLatin1StringView text;
    qsizetype place = 0; ///< of that byte, better a rare one

    /** Position of the first such text in @p bytes, or -1. */
    qsizetype position_in(QByteArrayView bytes) const
    {
        const char *candidate = bytes.data() + place;
        const char *const behind_last = bytes.data() + bytes.size() - text.size() + place + 1;
        while (candidate < behind_last) {
            candidate = static_cast<const char *>(
                std::memchr(candidate, text[place].toLatin1(), size_t(behind_last - candidate)));
            if (!candidate)
                return -1;
            if (std::memcmp(candidate - place, text.data(), size_t(text.size())) == 0)
                return candidate - place - bytes.data();
            ++candidate;
        }
        return -1;
    }
};

/** The place of the byte in @p text that @p sample holds least often. */
qsizetype rarest_place(QLatin1StringView text, QByteArrayView sample)
{
    const auto count = [sample](char byte) { return sample.count(byte); };
    return std::ranges::min_element(text, {}, count) - text.begin();
}

/** Finds texts and the borders of lines in a file. */
class line_finder
{
public:
    line_finder(QIODevice &file, const bool &cancel_flag, qsizetype block_bytes, qsizetype longest_text)
        : window(file, block_bytes, longest_text - 1)
        , cancelled(cancel_flag)
    {
    }

    QByteArrayView first_block()
    {
        return window.from(0, 1);
    }

    bool is_end(qint64 offset)
    {
        return window.from(offset, 1).isEmpty();
    }

    /** Offset of the first @p searched text in [@p from, @p to); -1 when there is none or the search was cancelled. */
    qint64 find(const searched_text &searched, qint64 from, qint64 to)
    {
        const qsizetype size = searched.text.size();
        while (!cancelled) {
            const QByteArrayView ahead = window.from(from, size);
            const QByteArrayView bytes = ahead.first(std::min<qint64>(ahead.size(), to - from));
            if (bytes.size() < size)
                return -1;
            const qsizetype position = searched.position_in(bytes);
            if (position >= 0)
                return from + position;
            from += bytes.size() - size + 1; // a text may begin in this block and end in the next
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
        const qint64 newline = find({"\n"_L1}, offset, end_of_file);
        return newline < 0 ? window.end() : newline + 1;
    }

private:
    file_window window;
    const bool &cancelled;
};

} // namespace

bool scan_log(QIODevice &file, std::span<const QLatin1StringView> markers, const bool &cancelled,
              const std::function<void(const QByteArray &)> &on_line, qsizetype block_bytes)
{
    line_finder log(file, cancelled, block_bytes, std::ranges::max(markers, {}, &QLatin1StringView::size).size());
    const searched_text first_marker = {markers.front(), rarest_place(markers.front(), log.first_block())};
    qint64 position = 0;
    while (!log.is_end(position)) {
        const qint64 hit = log.find(first_marker, position, end_of_file);
        if (hit < 0)
            return !cancelled;

        const qint64 begin = log.line_begin(position, hit);
        const qint64 end = log.line_end(hit);
        const auto is_in_line = [&](QLatin1StringView marker) { return log.find({marker}, begin, end) >= 0; };
        const bool has_all = std::all_of(markers.begin() + 1, markers.end(), is_in_line);
        if (cancelled)
            return false; // the line may have been cut short
        if (has_all && file.seek(begin))
            on_line(file.read(end - begin));
        position = end;
    }
    return true;
}
