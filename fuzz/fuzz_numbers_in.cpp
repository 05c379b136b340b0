// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/case/case_sources.h"
#include "host/files/host_error.h"

#include <algorithm>

/** The input is a text such as "1-3,7". */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    try {
        const QList<int> numbers = numbers_in(QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)));
        require(std::is_sorted(numbers.cbegin(), numbers.cend()), "numbers out of order");
        require(numbers.size() <= 1000001, "more numbers than a case may have"); // from 0 to a million
        require(numbers_in(ranges_of(numbers)) == numbers, "ranges are not read back");
    } catch (const host_error &) {
        // these are no numbers
    }
    return 0;
}
