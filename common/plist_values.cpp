// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/function_log.h"
#include "common/platform/property_list.h"
#include "common/plugin_static_function.h"

#include <QDateTime>
#include <QTimeZone>
#include <QVariantMap>

#include <cmath>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

bool is_number(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: // property lists make numbers of booleans
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

/** Toward zero; the nearest 64-bit number for what is out of range, 0 for what is no number. */
qint64 truncated(double number)
{
    using limits = std::numeric_limits<qint64>;
    constexpr double above_highest = 9223372036854775808.0;
    if (std::isnan(number))
        return 0;
    if (number >= above_highest)
        return limits::max();
    return number < -above_highest ? limits::min() : static_cast<qint64>(number);
}

std::optional<QString> string_text(const QVariant &value)
{
    return value.typeId() == QMetaType::QString ? std::optional(value.toString().trimmed()) : std::nullopt;
}

std::optional<QString> number_text(const QVariant &value)
{
    return is_number(value) ? std::optional(QString::number(truncated(value.toDouble()))) : std::nullopt;
}

QString boolean_text(const QVariant &value)
{
    return value.toBool() ? u"YES"_s : u"NO"_s;
}

/** Only a boolean has a text; a number that is none is no failure. */
std::optional<QString> yes_no_text(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return boolean_text(value);
    return is_number(value) ? std::optional(QString()) : std::nullopt;
}

QString entry_text(const QVariant &entry);

QStringList entry_texts(const QVariantList &entries)
{
    QStringList texts;
    for (const QVariant &entry : entries)
        texts.append(entry_text(entry));
    return texts;
}

QString dictionary_text(const QVariantMap &dictionary)
{
    QStringList texts;
    for (auto pair = dictionary.cbegin(); pair != dictionary.cend(); ++pair)
        texts.append(pair.key() + u'=' + entry_text(pair.value()));
    return u'{' + texts.join(u';') + u'}';
}

/**
 * An array's entry, the same on every platform: a text as it is, a number in decimal, a boolean as "YES" or "NO", a
 * date as "2020-05-03T10:00:00Z", data in lower-case hexadecimal, an array as "[a;b]", a dictionary as "{a=1;b=2}" with
 * its keys sorted.
 */
QString entry_text(const QVariant &entry)
{
    switch (entry.typeId()) {
    case QMetaType::Bool:
        return boolean_text(entry);
    case QMetaType::QDateTime:
        return entry.toDateTime().toString(Qt::ISODate);
    case QMetaType::QByteArray:
        return QString::fromLatin1(entry.toByteArray().toHex());
    case QMetaType::QVariantList:
        return u'[' + entry_texts(entry.toList()).join(u';') + u']';
    case QMetaType::QVariantMap:
        return dictionary_text(entry.toMap());
    default:
        return entry.toString();
    }
}

std::optional<QString> array_text(const QVariant &value)
{
    if (value.typeId() != QMetaType::QVariantList)
        return {};
    return entry_texts(value.toList()).join(u';');
}

/** What differs between the readers of one value. */
struct value_reader
{
    std::optional<QString> (*text_of)(const QVariant &value); ///< nothing for a value of the wrong kind
    QStringView failure;
    function_log log;
};

// clang-format off
constexpr value_reader string_values{
    string_text, u"[get_nsstring_values]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsstring_values(void *, void *)")};
constexpr value_reader number_values{
    number_text, u"[get_nsnumber_values]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsnumber_values(void *, void *)")};
constexpr value_reader number_values_yes_no{
    yes_no_text, u"[get_nsnumber_values_yes_no]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsnumber_values_yes_no(void *, void *)")};
constexpr value_reader string_key_and_values{
    string_text, u"[get_nsstring_key_and_values]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsstring_key_and_values(void *, void *, QString)")};
constexpr value_reader number_key_and_values{
    number_text, u"[get_nsnumber_key_and_values]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsnumber_key_and_values(void *, void *, QString)")};
constexpr value_reader number_key_and_value_yes_no{
    yes_no_text, u"[get_nsnumber_key_and_value_yes_no]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsnumber_key_and_value_yes_no(void *, void *, QString)")};
constexpr value_reader array_key_and_values{
    array_text, u"[get_nsarray_key_and_values]-----FAILED----- to get value: ",
    function_log(u"static QString plugin_static_function::get_nsarray_key_and_values(void *, void *, QString)")};
// clang-format on

/** The value's text, or nothing and a line in the log. */
std::optional<QString> read_value(const value_reader &reader, const void *key, const void *dictionary)
{
    std::optional<QString> text = reader.text_of(property_list_entry(dictionary, key));
    if (!text)
        reader.log(reader.failure + property_list_value(key).toString());
    return text;
}

/** label ":+:" text, or an empty text when there is none. */
QString labelled(const QString &label, const std::optional<QString> &text)
{
    return text ? label + u":+:"_s + *text : QString();
}

} // namespace

qint64 plugin_static_function::convert_nsdate_to_epoch(void *date, void *object)
{
    const QVariant value = property_list_value(date);
    if (value.typeId() != QMetaType::QDateTime || property_list_value(object).typeId() != QMetaType::QDateTime)
        return 0;
    // What a clock in this machine's zone showed is taken as UTC, as if it had been written down and read again. Qt's
    // calendar is Gregorian at all times; a year that four digits do not hold could not be read.
    const QDateTime local = value.toDateTime().toLocalTime();
    const bool is_readable = local.isValid() && local.date().year() >= 1 && local.date().year() <= 9999;
    return is_readable ? QDateTime(local.date(), local.time(), QTimeZone::utc()).toSecsSinceEpoch() : 0;
}

QString plugin_static_function::convert_cfstring_to_qstring(const __CFString *string)
{
    const QVariant value = property_list_value(string);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QString plugin_static_function::get_nsstring_values(void *key, void *dictionary)
{
    return read_value(string_values, key, dictionary).value_or(QString());
}

QString plugin_static_function::get_nsnumber_values(void *key, void *dictionary)
{
    return read_value(number_values, key, dictionary).value_or(QString());
}

QString plugin_static_function::get_nsnumber_values_yes_no(void *key, void *dictionary)
{
    return read_value(number_values_yes_no, key, dictionary).value_or(QString());
}

QString plugin_static_function::get_nsstring_key_and_values(void *key, void *dictionary, QString label)
{
    return labelled(label, read_value(string_key_and_values, key, dictionary));
}

QString plugin_static_function::get_nsnumber_key_and_values(void *key, void *dictionary, QString label)
{
    return labelled(label, read_value(number_key_and_values, key, dictionary));
}

QString plugin_static_function::get_nsnumber_key_and_value_yes_no(void *key, void *dictionary, QString label)
{
    return labelled(label, read_value(number_key_and_value_yes_no, key, dictionary));
}

QString plugin_static_function::get_nsarray_key_and_values(void *key, void *dictionary, QString label)
{
    return labelled(label, read_value(array_key_and_values, key, dictionary));
}
