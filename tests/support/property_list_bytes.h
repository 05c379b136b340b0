// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PROPERTY_LIST_BYTES_H
#define TESTS_SUPPORT_PROPERTY_LIST_BYTES_H

#include <QByteArray>
#include <QList>

/** Property lists written byte by byte, also such as no system would write. */

/** An XML list around the elements of its root. */
QByteArray xml_list(const QByteArray &elements);

/** A binary list of encoded objects; the first is its root. */
QByteArray binary_list(const QList<QByteArray> &objects);

/** The binary list with its second object as its root. */
QByteArray with_second_object_as_root(QByteArray list);

// Encoded objects of a binary list. Others are referred to by their place in the list.
QByteArray binary_text(const QByteArray &ascii);
QByteArray binary_date(double seconds_since_2001);
QByteArray binary_real(double number);
QByteArray binary_array(const QList<quint32> &entries);
QByteArray binary_dictionary(const QList<quint32> &keys, const QList<quint32> &values);

#endif
