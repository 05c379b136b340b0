// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "plugin/m_bluetooth_logs.h"

m_bluetooth_logs::m_bluetooth_logs() = default;
