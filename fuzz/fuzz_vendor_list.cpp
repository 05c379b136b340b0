// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "fuzz/input_file.h"
#include "host/files/host_error.h"
#include "host/report/reading/vendor_list.h"

/** The input is a list of address ranges and their vendors. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        const vendor_list vendors(input_file(QStringLiteral("oui.txt"), bytes));
        require(!vendors.description().isEmpty(), "a list without a description");
        const QByteArray vendor = vendors.vendor_of_first_public({"Public B4:C2:6A:00:00:01"});
        require(vendor.isEmpty() || bytes.toByteArray().toLower().contains("b4"), "a vendor that nobody named");
    } catch (const host_error &) {
        // it names nobody
    }
    return 0;
}
