// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/wal_counts.h"

#include "host/text/count_text.h"

#include <QJsonObject>

using namespace Qt::StringLiterals;

wal_counts::wal_counts(const QJsonValue &wal)
{
    const QJsonObject tables = wal.toObject();
    for (const QJsonValue counts : tables) {
        added += counts["added"_L1].toInteger();
        changed += counts["changed"_L1].toInteger();
        deleted += counts["deleted"_L1].toInteger();
    }
}

wal_counts &wal_counts::operator+=(const wal_counts &other)
{
    added += other.added;
    changed += other.changed;
    deleted += other.deleted;
    return *this;
}

QString wal_counts::text() const
{
    return u"the plug-in's rows are those of the main file; the host compared it with its log: "_s + count_text(added)
           + u" added, "_s + count_text(changed) + u" changed, "_s + count_text(deleted) + u" deleted"_s;
}
