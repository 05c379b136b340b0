// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/parse_log_line.h"
#include "fuzz/fuzzer.h"

/** The input is one line, with or without the words of a format. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString line = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const log_line_format *format : {&log_line_format::found_device, &log_line_format::active_device}) {
        const log_line_fields fields = parse_log_line(line, *format);
        require(!fields.status.isNull(), "the status is null");
        require(line.startsWith(fields.date) && fields.date.size() <= 15, "the date is not the start of the line");
        for (const QString &value : {fields.identifier, fields.device_name, fields.model, fields.status})
            require(value.size() <= line.size(), "a value is longer than the line");
    }
    return 0;
}
