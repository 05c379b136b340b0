// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/source/leaf_pages.h"
#include "host/text/json_text.h"

/** The input is a database file. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const qsizetype bytes = qsizetype(size);
    qint64 last_page = 0;
    for_each_leaf_row(QByteArrayView(data, bytes), [&](const leaf_row &row) {
        require(row.page >= last_page, "pages out of order");
        last_page = row.page;
        QByteArray json;
        for (const cell &value : row.values)
            append_json_value(json, value);
    });
    return 0;
}
