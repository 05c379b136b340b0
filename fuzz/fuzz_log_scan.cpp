// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_scan.h"
#include "extractors/ios_uid/parse_log_line.h"
#include "fuzz/fuzzer.h"

#include <QBuffer>

#include <algorithm>

namespace {

/** The lines that hold all markers, by the definition of scan_log(). */
QByteArrayList lines_read_one_by_one(QBuffer &log, const log_line_format &format)
{
    QByteArrayList lines;
    while (!log.atEnd()) {
        const QByteArray line = log.readLine();
        const QString text = QString::fromUtf8(line);
        if (std::all_of(format.markers.begin(), format.markers.end(),
                        [&text](QLatin1StringView marker) { return text.contains(marker); }))
            lines.append(line);
    }
    return lines;
}

QByteArrayList scanned_lines(QBuffer &log, const log_line_format &format, qsizetype block_bytes)
{
    QByteArrayList lines;
    const bool cancelled = false;
    const bool is_whole = scan_log(
        log, format.markers, cancelled, [&lines](const QByteArray &line) { lines.append(line); }, block_bytes);
    require(is_whole, "a scan that nobody cancelled is cut short");
    return lines;
}

} // namespace

/** The first byte is the size of a block, the others are a log. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    QBuffer log(&bytes);
    log.open(QIODevice::ReadOnly);
    for (const log_line_format *format : {&log_line_format::found_device, &log_line_format::active_device}) {
        log.seek(0);
        const QByteArrayList expected = lines_read_one_by_one(log, *format);
        log.seek(0);
        require(scanned_lines(log, *format, 1 + data[0]) == expected, "the scan finds other lines");
    }
    return 0;
}
