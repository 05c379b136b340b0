// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/spotlight.h"

spotlight_descriptions read_spotlight_descriptions(const QString &path)
{
    Q_UNUSED(path)
    return {};
}
