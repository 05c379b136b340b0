// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/archive_bytes.h"

#include <QString>

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

QByteArray cpio_member(const QByteArray &name, const QByteArray &content, int inode)
{
    QByteArray bytes = "070701";
    for (const qint64 number :
         {qint64(inode), qint64(0100644), qint64(0), qint64(0), qint64(1), qint64(1715940665), qint64(content.size()),
          qint64(0), qint64(0), qint64(0), qint64(0), qint64(name.size() + 1), qint64(0)})
        bytes += QByteArray::number(number, 16).rightJustified(8, '0');
    bytes += name + '\0';
    bytes.append((4 - bytes.size() % 4) % 4, '\0');
    return bytes + content + QByteArray((4 - content.size() % 4) % 4, '\0');
}

QByteArray encrypted_zip_member(const QByteArray &name)
{
    QByteArray header(30, '\0');
    header.replace(0, 8, QByteArray("PK\x03\x04\x14\x00\x01\x00", 8)); // version, flags: encrypted
    header[18] = header[22] = 20;                                      // the sizes
    header[26] = char(name.size());
    return header + name + QByteArray(20, 'x');
}
