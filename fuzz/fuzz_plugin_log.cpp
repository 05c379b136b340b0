// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/run/plugin_log.h"

#include <QBuffer>

/** The input is a log of the plug-in. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer log(&bytes);
    log.open(QIODevice::ReadOnly);
    const log_findings findings = read_plugin_log(log, {});
    for (const logged_failure &failure : findings.failures)
        require(failure.count > 0, "a failure that never was");
    require(log_findings::from_json(findings.to_json()).to_json() == findings.to_json(), "findings are not read back");
    return 0;
}
