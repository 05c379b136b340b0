// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_COUNTER_H
#define HOST_REPORT_READING_COUNTER_H

#include "host/text/cell.h"

#include <optional>

/** A counter of the evidence: integers, and texts that are one. Nothing for 0, which means never, and for the rest. */
std::optional<qint64> counter_of(const cell &value);

#endif
