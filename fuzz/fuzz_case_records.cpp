// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/case/manifest.h"
#include "host/case/record_objections.h"
#include "host/files/host_error.h"

#include <QJsonDocument>

/** The input is a record of a source, or a manifest. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QJsonObject members = QJsonDocument::fromJson(bytes).object();
    const bool is_forged = !objection_to_record(members, 1).isEmpty();
    const QJsonObject once = source_record::from_json(members).to_json();
    require(source_record::from_json(once).to_json() == once, "a record is not read back");
    require(is_forged || objection_to_record(once, 1).isEmpty(), "an honest record is written as a forged one");
    try {
        const QJsonObject manifest = manifest_members({bytes, {}});
        require(!manifest.value(QLatin1StringView("sources")).toArray().isEmpty(), "a manifest without sources");
    } catch (const host_error &) {
        // it is none
    }
    return 0;
}
