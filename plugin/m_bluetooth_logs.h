// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef PLUGIN_M_BLUETOOTH_LOGS_H
#define PLUGIN_M_BLUETOOTH_LOGS_H

/** The library's nominal main class. Nothing uses it. */
class m_bluetooth_logs
{
public:
    m_bluetooth_logs();
};

#endif
