// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/property_list/property_list_file.h"

#include "common/evidence_file.h"
#include "common/platform/property_list.h"
#include "common/property_list/property_list_guard.h"

QVariant read_property_list(const QString &path)
{
    QFile file(path);
    const std::optional<QString> error = open_evidence_file(file);
    if (error)
        return {};
    // One byte more than allowed shows that a file is too large, even one that grows meanwhile.
    const QByteArray guarded = guarded_property_list(file.read(largest_property_list_bytes + 1));
    return guarded.isNull() ? QVariant() : parse_property_list(guarded);
}
