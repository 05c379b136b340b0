// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/property_list/binary_property_list.h"
#include "fuzz/fuzzer.h"

#include <algorithm>

/** The input is a binary property list, with or without its first bytes; each of its objects is looked at. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr quint64 most_references = 100;
    const QByteArrayView bytes(data, qsizetype(size));
    const binary_property_list list(bytes);
    list.object(list.top_object());
    for (quint64 index = 0; index < std::min<quint64>(size, 1000); ++index) {
        const auto object = list.object(index);
        if (!object)
            continue;
        require(object->content_bytes <= 2 * size, "an object is larger than the list");
        for (quint64 i = 0; i < std::min(object->references, most_references); ++i)
            list.reference(*object, i);
    }
    return 0;
}
