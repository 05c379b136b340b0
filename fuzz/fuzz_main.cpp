// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"

#include <QFile>

#include <cstdio>

/** In place of libFuzzer's own: gives each file of the command line to the fuzzer once. */
int main(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        QFile file(QFile::decodeName(argv[i]));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "%s: %s\n", argv[i], qPrintable(file.errorString()));
            return 1;
        }
        const QByteArray bytes = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
    }
    std::printf("%d files\n", argc - 1);
    return argc > 1 ? 0 : 1;
}
