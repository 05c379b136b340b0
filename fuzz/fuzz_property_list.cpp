// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/property_list.h"
#include "common/property_list/property_list_guard.h"
#include "fuzz/fuzzer.h"

/** The input is a property list of either kind. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray list(reinterpret_cast<const char *>(data), qsizetype(size));
    const QByteArray guarded = guarded_property_list(list);
    if (guarded.isNull())
        return 0;
    require(guarded_property_list(guarded) == guarded, "what was let through is not let through again");
    parse_property_list(guarded);
    return 0;
}
