// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/counter.h"

std::optional<qint64> counter_of(const cell &value)
{
    qint64 number = value.integer;
    if (value.kind == cell::type::text) {
        bool is_number = false;
        number = value.bytes.toByteArray().toLongLong(&is_number);
        if (!is_number)
            return {};
    } else if (value.kind != cell::type::integer) {
        return {};
    }
    return number == 0 ? std::nullopt : std::optional(number);
}
