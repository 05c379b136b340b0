// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/text_parts.h"

QString first_part(const QString &text, QStringView separator)
{
    return text.left(text.indexOf(separator));
}

QString second_part(const QString &text, QStringView separator)
{
    const qsizetype first = text.indexOf(separator);
    return first == -1 ? QString() : first_part(text.sliced(first + separator.size()), separator);
}
