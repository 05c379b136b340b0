// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/foundation.h"

using namespace Qt::StringLiterals;

QString boolean_class_name()
{
    return u"NSBoolNumber"_s;
}
