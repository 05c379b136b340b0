// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/cell.h"

#include <QLocale>

QByteArray text_of(const cell &value)
{
    switch (value.kind) {
    case cell::type::integer:
        return QByteArray::number(value.integer);
    case cell::type::real:
        return QByteArray::number(value.real, 'g', QLocale::FloatingPointShortest);
    default:
        return value.bytes.toByteArray();
    }
}
