// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/confinement.h"

using namespace Qt::StringLiterals;

QJsonObject confinement::to_json() const
{
    return {{u"landlock"_s, landlock ? QJsonValue(*landlock) : QJsonValue()}, {u"seccomp"_s, seccomp}};
}
