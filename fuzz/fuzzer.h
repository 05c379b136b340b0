// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef FUZZ_FUZZER_H
#define FUZZ_FUZZER_H

#include <QtGlobal>

#include <cstddef>
#include <cstdint>

/** What each fuzzer defines, by the name that libFuzzer calls: it ends the process when the input shows a fault. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

/** Ends the process unless the condition holds, also in a release build. */
inline void require(bool condition, const char *what)
{
    if (!condition)
        qFatal("%s", what);
}

#endif
