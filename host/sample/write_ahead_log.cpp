// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/write_ahead_log.h"

#include <QtEndian>

namespace {

constexpr quint32 magic_of_big_endian_sums = 0x377f0683;
constexpr quint32 format_version = 3007000;
constexpr quint32 first_salt = 0x53414d50;
constexpr quint32 second_salt = 0x4c453031;
constexpr qsizetype page_size_at = 16; // in the header of a database; 1 means 65,536

QByteArray big_endian(std::initializer_list<quint32> numbers)
{
    QByteArray bytes(qsizetype(numbers.size()) * 4, '\0');
    char *place = bytes.data();
    for (const quint32 number : numbers) {
        qToBigEndian(number, place);
        place += 4;
    }
    return bytes;
}

/** The two running sums of a log; whole pairs of numbers are added. */
struct running_sums
{
    quint32 first = 0;
    quint32 second = 0;

    void add(QByteArrayView bytes)
    {
        for (qsizetype at = 0; at + 8 <= bytes.size(); at += 8) {
            first += qFromBigEndian<quint32>(bytes.data() + at) + second;
            second += qFromBigEndian<quint32>(bytes.data() + at + 4) + first;
        }
    }
    QByteArray bytes() const
    {
        return big_endian({first, second});
    }
};

qsizetype page_size_of(QByteArrayView database)
{
    const auto size = qFromBigEndian<quint16>(database.data() + page_size_at);
    return size == 1 ? 65536 : size;
}

} // namespace

QByteArray write_ahead_log(QByteArrayView before, QByteArrayView after)
{
    const qsizetype page_size = page_size_of(after);
    const qsizetype page_count = after.size() / page_size;
    QList<qsizetype> changed;
    for (qsizetype page = 0; page < page_count; ++page) {
        const qsizetype place = page * page_size;
        if (place >= before.size() || before.sliced(place, page_size) != after.sliced(place, page_size))
            changed.append(page);
    }
    running_sums sums;
    QByteArray log = big_endian(
        {magic_of_big_endian_sums, format_version, quint32(page_size), 0, first_salt, second_salt});
    sums.add(log);
    log += sums.bytes();
    for (const qsizetype page : std::as_const(changed)) {
        const QByteArrayView content = after.sliced(page * page_size, page_size);
        const bool is_last = page == changed.last();
        const QByteArray head = big_endian({quint32(page + 1), is_last ? quint32(page_count) : 0});
        sums.add(head);
        sums.add(content);
        log += head + big_endian({first_salt, second_salt}) + sums.bytes();
        log.append(content);
    }
    return log;
}
