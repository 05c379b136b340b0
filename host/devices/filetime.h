// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_FILETIME_H
#define HOST_DEVICES_FILETIME_H

#include <QString>

/**
 * A time of Windows, steps of 100 ns since 1601-01-01T00:00:00Z (FILETIME in Microsoft's documentation of
 * minwinbase.h), as "2026-01-31T12:00:00.1234567Z", the fraction only where there is one. Empty for 0 and for all bits
 * set, which say never, and for years beyond 9999.
 */
QString filetime_text(quint64 filetime);

#endif
