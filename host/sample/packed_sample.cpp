// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/sample/sample_parts.h"

#include <QFile>
#include <QtEndian>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block_bytes = 512;
constexpr qint64 sample_time = 1715947865; // 2024-05-17T12:11:05Z

QByteArray content_of(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw host_error(error_kind::io, u"the file cannot be read: "_s + path + u": "_s + file.errorString());
    return file.readAll();
}

QByteArray octal(qint64 number, qsizetype digits)
{
    return QByteArray::number(number, 8).rightJustified(digits, '0') + '\0';
}

/** POSIX.1-1988, "ustar": a header of one block and the content in whole blocks. */
QByteArray tar_member(const QByteArray &name, const QByteArray &content)
{
    constexpr qsizetype prefix_place = 345;
    constexpr qsizetype longest_name = 100;
    const qsizetype split = name.size() > longest_name ? name.lastIndexOf('/') : -1;
    QByteArray header(block_bytes, '\0');
    const auto put = [&header](qsizetype place, const QByteArray &text) { header.replace(place, text.size(), text); };
    put(0, name.sliced(split + 1));
    put(100, octal(0644, 7) + octal(0, 7) + octal(0, 7) + octal(content.size(), 11) + octal(sample_time, 11)
                 + QByteArray(8, ' ') + '0');
    put(257, QByteArray("ustar\00000", 8));
    if (split > 0)
        put(prefix_place, name.first(split));
    qint64 sum = 0;
    for (const char byte : std::as_const(header))
        sum += static_cast<unsigned char>(byte);
    put(148, octal(sum, 6) + ' ');
    return header + content + QByteArray((block_bytes - content.size() % block_bytes) % block_bytes, '\0');
}

/** CRC-32 as gzip has it (RFC 1952, section 8). */
quint32 crc32_of(const QByteArray &bytes)
{
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> values = {};
        for (quint32 i = 0; i < values.size(); ++i) {
            values[i] = i;
            for (int bit = 0; bit < 8; ++bit)
                values[i] = values[i] >> 1 ^ ((values[i] & 1) != 0 ? 0xEDB88320U : 0);
        }
        return values;
    }();
    quint32 crc = 0xFFFFFFFF;
    for (const char byte : bytes)
        crc = table[(crc ^ static_cast<unsigned char>(byte)) & 0xFF] ^ crc >> 8;
    return ~crc;
}

/** What Qt packs begins with a size of 4 bytes and a header of 2, and ends with a sum of 4 (RFC 1950). */
QByteArray gzip_of(const QByteArray &bytes)
{
    const QByteArray packed = qCompress(bytes, 9);
    QByteArray trailer(8, '\0');
    qToLittleEndian(crc32_of(bytes), trailer.data());
    qToLittleEndian(quint32(bytes.size()), trailer.data() + 4);
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\x02\xff", 10) + packed.sliced(6, packed.size() - 10) + trailer;
}

} // namespace

void write_packed_sample(const QString &archive, const QString &folder, const QStringList &files)
{
    QByteArray tar;
    for (const QString &file : files)
        tar += tar_member(file.toUtf8(), content_of(folder + file));
    write_sample_file(archive, gzip_of(tar + QByteArray(2 * block_bytes, '\0')));
}
