// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/property_list_bytes.h"

#include <QtEndian>

namespace {

constexpr char number_width = sizeof(quint32); // of references and offsets

template<typename Number>
QByteArray big_endian(Number number)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

/** A marker of a kind with its count, which stands behind from 15 on. */
QByteArray marker(int kind, qsizetype count)
{
    if (count < 15)
        return QByteArray(1, static_cast<char>(kind << 4 | static_cast<int>(count)));
    return static_cast<char>(kind << 4 | 0xF) + (char(0x12) + big_endian(static_cast<quint32>(count)));
}

QByteArray references(const QList<quint32> &objects)
{
    QByteArray bytes;
    for (const quint32 object : objects)
        bytes += big_endian(object);
    return bytes;
}

} // namespace

QByteArray xml_list(const QByteArray &elements)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n"
           + elements + "\n</plist>\n";
}

QByteArray binary_list(const QList<QByteArray> &objects)
{
    QByteArray list = "bplist00";
    QByteArray offsets;
    for (const QByteArray &object : objects) {
        offsets += big_endian(static_cast<quint32>(list.size()));
        list += object;
    }
    const auto table = static_cast<quint64>(list.size());
    const QByteArray unused(6, '\0');
    return list + offsets + unused + number_width + number_width + big_endian(static_cast<quint64>(objects.size()))
           + big_endian(quint64(0)) + big_endian(table);
}

QByteArray with_second_object_as_root(QByteArray list)
{
    constexpr qsizetype from_end = 9; // the last byte of the root's place in the trailer
    list[list.size() - from_end] = 1;
    return list;
}

QByteArray binary_text(const QByteArray &ascii)
{
    return marker(0x5, ascii.size()) + ascii;
}

QByteArray binary_date(double seconds_since_2001)
{
    return char(0x33) + big_endian(seconds_since_2001);
}

QByteArray binary_real(double number)
{
    return char(0x23) + big_endian(number);
}

QByteArray binary_array(const QList<quint32> &entries)
{
    return marker(0xA, entries.size()) + references(entries);
}

QByteArray binary_dictionary(const QList<quint32> &keys, const QList<quint32> &values)
{
    return marker(0xD, keys.size()) + references(keys + values);
}
