// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/tar_bytes.h"

QByteArray tar_member(const QByteArray &name, const QByteArray &content, char type, const QByteArray &link)
{
    QByteArray header(512, '\0');
    const auto put = [&header](qsizetype place, const QByteArray &text) { header.replace(place, text.size(), text); };
    put(0, name);
    put(100, "0000644");
    put(124, QByteArray::number(content.size(), 8).rightJustified(11, '0'));
    put(148, QByteArray(8, ' '));
    put(156, QByteArray(1, type));
    put(157, link);
    put(257, QByteArray("ustar\00000", 8));
    qint64 sum = 0;
    for (const char byte : std::as_const(header))
        sum += static_cast<unsigned char>(byte);
    put(148, QByteArray::number(sum, 8).rightJustified(6, '0') + '\0');
    return header + content + QByteArray((512 - content.size() % 512) % 512, '\0');
}
