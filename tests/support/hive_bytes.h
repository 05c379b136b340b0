// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_HIVE_BYTES_H
#define TESTS_SUPPORT_HIVE_BYTES_H

#include <QByteArray>
#include <QList>

/** A registry hive written byte by byte, as docs/formats.md describes it. */

struct hive_value
{
    QByteArray name; ///< Latin-1
    quint32 type = 0;
    QByteArray data;
};

struct hive_key
{
    QByteArray name; ///< Latin-1
    QList<hive_value> values = {};
    QList<hive_key> keys = {};
    quint64 written = 0; ///< FILETIME
};

/** Types of values. */
inline constexpr quint32 hive_text = 1;
inline constexpr quint32 hive_binary = 3;
inline constexpr quint32 hive_number = 4;
inline constexpr quint32 hive_long_number = 11;

hive_value hive_text_value(const QByteArray &name, const QString &text);
hive_value hive_number_value(const QByteArray &name, quint32 number);
hive_value hive_time_value(const QByteArray &name, quint64 filetime); ///< eight bytes

/** The whole hive. The two sequence numbers are equal in one that was closed in order. */
QByteArray hive_bytes(const hive_key &root, quint32 first_sequence = 1, quint32 second_sequence = 1);

/** Writes the checksum of a header anew that was changed. */
void sign_hive(QByteArray &hive);

#endif
