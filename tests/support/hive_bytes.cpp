// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/hive_bytes.h"

#include <QString>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype header_bytes = 4096;
constexpr qsizetype bin_header_bytes = 32;
constexpr qsizetype checksum_at = 508;
constexpr quint32 nowhere = 0xffffffff;

template<typename Number>
void put(QByteArray &bytes, qsizetype at, Number number)
{
    qToLittleEndian(number, bytes.data() + at);
}

template<typename Number>
QByteArray little_endian(Number number)
{
    QByteArray bytes(sizeof number, '\0');
    put(bytes, 0, number);
    return bytes;
}

/** The cells of a hive in one large bin. Offsets count from the first bin. */
class hive_writer
{
public:
    quint32 add_cell(QByteArray content)
    {
        content.resize((content.size() + 4 + 7) / 8 * 8 - 4, '\0');
        const auto offset = quint32(bin_header_bytes + cells.size());
        cells += little_endian(-qint32(content.size() + 4)) + content;
        return offset;
    }

    quint32 add_value(const hive_value &value)
    {
        constexpr quint32 is_inside = 0x80000000;
        QByteArray cell = "vk" + little_endian(quint16(value.name.size()));
        if (value.data.size() <= 4) {
            QByteArray data = value.data;
            data.resize(4, '\0');
            cell += little_endian(quint32(value.data.size()) | is_inside) + data;
        } else {
            const quint32 place = add_cell(value.data);
            cell += little_endian(quint32(value.data.size())) + little_endian(place);
        }
        return add_cell(cell + little_endian(value.type) + little_endian(quint16(1)) + QByteArray(2, '\0')
                        + value.name);
    }

    /** @p parent is not known yet where the key stands deeper: readers that go downwards do not need it. */
    quint32 add_key(const hive_key &key, bool is_root)
    {
        QByteArray values;
        for (const hive_value &value : key.values)
            values += little_endian(add_value(value));
        const quint32 value_list = values.isEmpty() ? nowhere : add_cell(values);
        QByteArray keys = "lf" + little_endian(quint16(key.keys.size()));
        for (const hive_key &below : key.keys)
            keys += little_endian(add_key(below, false)) + below.name.leftJustified(4, '\0', true);
        const quint32 key_list = key.keys.isEmpty() ? nowhere : add_cell(keys);
        QByteArray cell(76, '\0');
        cell.replace(0, 2, "nk");
        put(cell, 2, quint16(is_root ? 0x2c : 0x20));
        put(cell, 4, key.written);
        put(cell, 16, quint32(bin_header_bytes));
        put(cell, 20, quint32(key.keys.size()));
        put(cell, 28, key_list);
        put(cell, 32, nowhere);
        put(cell, 36, quint32(key.values.size()));
        put(cell, 40, value_list);
        put(cell, 44, nowhere);
        put(cell, 48, nowhere);
        put(cell, 72, quint16(key.name.size()));
        return add_cell(cell + key.name);
    }

    QByteArray bin() const
    {
        QByteArray bytes = "hbin" + QByteArray(bin_header_bytes - 4, '\0') + cells;
        const qsizetype size = (bytes.size() + 8 + header_bytes - 1) / header_bytes * header_bytes;
        const qsizetype rest = size - bytes.size(); // a free cell
        bytes += little_endian(qint32(rest)) + QByteArray(rest - 4, '\0');
        put(bytes, 8, quint32(size));
        return bytes;
    }

private:
    QByteArray cells;
};

} // namespace

hive_value hive_text_value(const QByteArray &name, const QString &text)
{
    QByteArray data;
    for (const QChar character : QString(text + QChar(0)))
        data += little_endian(character.unicode());
    return {name, hive_text, data};
}

hive_value hive_number_value(const QByteArray &name, quint32 number)
{
    return {name, hive_number, little_endian(number)};
}

hive_value hive_time_value(const QByteArray &name, quint64 filetime)
{
    return {name, hive_binary, little_endian(filetime)};
}

QByteArray hive_bytes(const hive_key &root, quint32 first_sequence, quint32 second_sequence)
{
    hive_writer writer;
    const quint32 root_cell = writer.add_key(root, true);
    const QByteArray bin = writer.bin();
    QByteArray header(header_bytes, '\0');
    header.replace(0, 4, "regf");
    put(header, 4, first_sequence);
    put(header, 8, second_sequence);
    put(header, 20, quint32(1)); // version 1.5
    put(header, 24, quint32(5));
    put(header, 32, quint32(1));
    put(header, 36, root_cell);
    put(header, 40, quint32(bin.size()));
    put(header, 44, quint32(1));
    sign_hive(header);
    return header + bin;
}

void sign_hive(QByteArray &hive)
{
    quint32 checksum = 0;
    for (qsizetype at = 0; at < checksum_at; at += 4)
        checksum ^= qFromLittleEndian<quint32>(hive.constData() + at);
    put(hive, checksum_at, checksum);
}
