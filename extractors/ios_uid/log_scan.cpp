// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_scan.h"

#include <QByteArrayView>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

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

// Other loaders than ELF's cannot choose between two codes of one function.
#if defined(__x86_64__) && defined(__ELF__)
#define FASTER_WITH_WIDE_REGISTERS __attribute__((target_clones("avx2", "default")))
#else
#define FASTER_WITH_WIDE_REGISTERS
#endif

constexpr qsizetype stretch_bytes = 1024; // a fixed length, so that the loop becomes vector code

/** Whether the byte @p first stands anywhere in the stretch at @p bytes with @p second at that @p distance from it. */
FASTER_WITH_WIDE_REGISTERS bool has_pair(const char *bytes, char first, char second, qsizetype distance)
{
    unsigned char found = 0;
    for (qsizetype i = 0; i < stretch_bytes; ++i)
        found |= static_cast<unsigned char>((bytes[i] == first) & (bytes[i + distance] == second));
    return found != 0;
}

/**
 * A text to search for. Stretches without two of its bytes at their distance are passed over. That takes the same time
 * whatever the log says; memchr() for one byte, rare or not, stops wherever it stands.
 */
struct searched_text
{
    QLatin1StringView text;
    qsizetype first = 0;  ///< place of one of these bytes in the text
    qsizetype second = 0; ///< of the other

    /** Position of the first such text in @p bytes, or -1. */
    qsizetype position_in(QByteArrayView bytes) const
    {
        qsizetype begin = 0;
        for (; begin + stretch_bytes + text.size() - 1 <= bytes.size(); begin += stretch_bytes) {
            if (!has_pair(bytes.data() + begin + first, byte(first), byte(second), second - first))
                continue;
            const qsizetype position = position_near(bytes.sliced(begin, stretch_bytes + text.size() - 1));
            if (position >= 0)
                return begin + position;
        }
        const qsizetype position = position_near(bytes.sliced(begin));
        return position < 0 ? -1 : begin + position;
    }

private:
    char byte(qsizetype place) const
    {
        return text[place].toLatin1();
    }

    qsizetype position_near(QByteArrayView bytes) const
    {
        const size_t position = std::string_view(bytes.data(), size_t(bytes.size()))
                                    .find({text.data(), size_t(text.size())});
        return position == std::string_view::npos ? -1 : qsizetype(position);
    }
};

/** The place in the text that has the least @p count. */
template<typename counter>
qsizetype place_of_least(QLatin1StringView text, counter count)
{
    std::vector<qsizetype> counts;
    for (qsizetype place = 0; place < text.size(); ++place)
        counts.push_back(count(place));
    return std::min_element(counts.cbegin(), counts.cend()) - counts.cbegin();
}

/** The text, to be found by those two bytes that stand least often at their distance in @p sample. */
searched_text found_by_rare_bytes(QLatin1StringView text, QByteArrayView sample)
{
    const auto count_of_byte = [&](qsizetype place) { return sample.count(text[place].toLatin1()); };
    const qsizetype first = place_of_least(text, count_of_byte);
    const auto count_of_pair = [&](qsizetype second) {
        qsizetype count = 0;
        for (qsizetype i = text.size(); i + text.size() < sample.size(); ++i)
            count += sample[i] == text[first] && sample[i + second - first] == text[second];
        return count;
    };
    return {text, first, place_of_least(text, count_of_pair)};
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
    const searched_text first_marker = found_by_rare_bytes(markers.front(), log.first_block());
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
