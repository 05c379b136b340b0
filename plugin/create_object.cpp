// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "plugin/bluetooth_logs.h"

bluetooth_logs *create_object()
{
    return new bluetooth_logs(nullptr);
}
