// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/source/ios_lines.h"

namespace {

QByteArrayList lines_of(QByteArrayView log, qsizetype block_bytes)
{
    QByteArrayList lines;
    ios_line_finder finder([&lines, log](const ios_line &line) {
        require(line.offset >= 0 && line.offset + line.size <= log.size(), "a line lies outside the log");
        require(log.sliced(line.offset, line.start.size()) == line.start, "a line is not what stands at its place");
        lines.append(QByteArray::number(line.number) + ' ' + QByteArray::number(line.offset) + ' '
                     + QByteArray::number(line.size) + ' ' + QByteArray::number(int(line.has_row)) + ' '
                     + line.table.data());
    });
    for (qsizetype place = 0; place < log.size(); place += block_bytes)
        finder.add(log.sliced(place, qMin(block_bytes, log.size() - place)));
    finder.finish();
    return lines;
}

} // namespace

/** The first byte is the size of a block, the others are a log: blocks change nothing. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const QByteArrayView log(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    require(lines_of(log, 1 + data[0]) == lines_of(log, log.size()), "blocks give other lines");
    return 0;
}
