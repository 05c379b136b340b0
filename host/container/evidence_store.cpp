// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_store.h"

#include "host/text/json_member.h"

using namespace Qt::StringLiterals;

QJsonObject file_origin::to_json() const
{
    return {{u"path"_s, path},
            {u"inode"_s, inode ? QJsonValue(qint64(*inode)) : QJsonValue()},
            {u"modified"_s, text_or_null(modified)},
            {u"size"_s, size ? QJsonValue(*size) : QJsonValue()}};
}

QString joined(const QStringList &parts)
{
    return parts.join(u'/');
}
