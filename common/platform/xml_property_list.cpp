// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/xml_property_list.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

/** The magnitude that the digits name, hexadecimal behind "0x"; the highest when they name more. Nothing if unreadable.
 */
std::optional<quint64> magnitude_of(QStringView digits)
{
    const bool is_hexadecimal = digits.startsWith("0x"_L1, Qt::CaseInsensitive);
    const quint64 base = is_hexadecimal ? 16 : 10;
    digits = digits.sliced(is_hexadecimal ? 2 : 0);
    if (digits.isEmpty())
        return {};
    quint64 magnitude = 0;
    bool is_too_large = false;
    for (const QChar character : digits) {
        bool is_digit = false;
        const quint64 digit = QString(character).toULongLong(&is_digit, static_cast<int>(base));
        if (!is_digit)
            return {};
        is_too_large = is_too_large || qMulOverflow(magnitude, base, &magnitude)
                       || qAddOverflow(magnitude, digit, &magnitude);
    }
    return is_too_large ? std::numeric_limits<quint64>::max() : magnitude;
}

QVariant integer_of(QStringView text)
{
    using limits = std::numeric_limits<qint64>;
    const bool is_negative = text.startsWith(u'-');
    const bool has_sign = is_negative || text.startsWith(u'+');
    const std::optional<quint64> magnitude = magnitude_of(text.sliced(has_sign ? 1 : 0));
    if (!magnitude)
        return {};
    constexpr quint64 highest = limits::max();
    if (is_negative)
        return *magnitude > highest ? limits::min() : -static_cast<qint64>(*magnitude);
    if (*magnitude > highest)
        return QVariant::fromValue<quint64>(*magnitude);
    return QVariant::fromValue<qint64>(static_cast<qint64>(*magnitude));
}

QVariant real_of(QStringView text)
{
    bool is_readable = false;
    const double number = text.toDouble(&is_readable);
    if (is_readable || std::isinf(number)) // an infinite number is one that is too large
        return number;
    if (text.compare("infinity"_L1, Qt::CaseInsensitive) == 0 || text.compare("+infinity"_L1, Qt::CaseInsensitive) == 0)
        return std::numeric_limits<double>::infinity();
    if (text.compare("-infinity"_L1, Qt::CaseInsensitive) == 0)
        return -std::numeric_limits<double>::infinity();
    return {};
}

/** Only "2020-05-03T10:00:00Z" is a date. */
QVariant date_of(QStringView text)
{
    constexpr qsizetype size = "yyyy-MM-ddThh:mm:ssZ"_L1.size();
    const QDateTime date = QDateTime::fromString(text.toString(), Qt::ISODate);
    if (text.size() != size || text.at(10) != u'T' || !text.endsWith(u'Z') || !date.isValid())
        return {};
    return date.toUTC();
}

/** Reads one list. After an error every value is invalid. */
class list_reader
{
public:
    explicit list_reader(const QByteArray &list)
        : reader(list)
    {
        reader.setNamespaceProcessing(false);
    }

    QVariant read()
    {
        reader.readNextStartElement();
        QVariant root;
        if (reader.qualifiedName() != "plist"_L1) {
            root = value();
        } else if (reader.readNextStartElement()) {
            root = value();
            if (reader.readNextStartElement())
                refuse();
        }
        return reader.hasError() ? QVariant() : root;
    }

private:
    void refuse()
    {
        reader.raiseError(u"not an element of a property list"_s);
    }

    QString text()
    {
        return reader.readElementText();
    }

    /** The value of the element that the reader has entered; leaves it at the element's end. */
    QVariant value()
    {
        const QString kind = reader.qualifiedName().toString();
        if (kind == "dict"_L1)
            return dictionary();
        if (kind == "array"_L1)
            return array();
        if (kind == "string"_L1)
            return text();
        if (kind == "integer"_L1)
            return integer_of(text().trimmed());
        if (kind == "real"_L1)
            return real_of(text().trimmed());
        if (kind == "date"_L1)
            return date_of(text().trimmed());
        if (kind == "data"_L1)
            return QByteArray::fromBase64(text().toLatin1());
        if (kind == "true"_L1 || kind == "false"_L1) {
            text();
            return kind == "true"_L1;
        }
        refuse();
        return {};
    }

    QVariantList array()
    {
        QVariantList entries;
        while (reader.readNextStartElement())
            entries.append(value());
        return entries;
    }

    /** A map; nothing for a reference of a keyed archive, which is written as a dictionary. */
    QVariant dictionary()
    {
        QVariantMap pairs;
        while (reader.readNextStartElement()) {
            if (reader.qualifiedName() != "key"_L1)
                refuse();
            const QString key = text();
            if (!reader.readNextStartElement())
                refuse();
            pairs.insert(key, value());
        }
        const bool is_reference = pairs.size() == 1 && pairs.firstKey() == "CF$UID"_L1
                                  && pairs.first().typeId() == QMetaType::LongLong;
        return is_reference ? QVariant() : pairs;
    }

    QXmlStreamReader reader;
};

} // namespace

QVariant parse_xml_property_list(const QByteArray &guarded)
{
    return list_reader(guarded).read();
}
