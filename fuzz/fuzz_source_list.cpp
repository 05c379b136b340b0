// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "fuzz/input_file.h"
#include "host/case/case_sources.h"
#include "host/files/host_error.h"

/** The input is a list of sources. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString file = input_file(QStringLiteral("list.json"),
                                    QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)));
    try {
        QList<named_source> sources = read_source_list(file);
        require(!sources.isEmpty(), "a list without a source");
        number_sources(sources);
        refuse_overlaps(sources, path_comparison::texts);
        for (const named_source &source : std::as_const(sources))
            require(source.path.startsWith(QLatin1Char('/')) && source.number >= 1, "a source without a place");
        require(!sources_identity(sources).isEmpty(), "a list without an identity");
    } catch (const host_error &) {
        // it is refused
    }
    return 0;
}
