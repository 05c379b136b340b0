// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/report/preferences_names.h"

/** The input is a preferences list, binary or XML. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const preferences_names names(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const QByteArray name = names.name_of({"b4:c2:6a:7f:d3:7a"});
    require(name.isNull() || names.count() > 0, "a list without names has one");
    require(name.isValidUtf8(), "a name is no UTF-8");
    return 0;
}
