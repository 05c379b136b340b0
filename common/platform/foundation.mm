// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/foundation.h"

#include "common/platform/property_list.h"
#include "common/platform/reference_date.h"

#include <limits>

using namespace Qt::StringLiterals;

static_assert(sizeof(unichar) == sizeof(QChar));

namespace
{

id object_of(const void *object)
{
    return static_cast<id>(const_cast<void *>(object));
}

bool is_kind_of(id object, Class wanted)
{
    return object && [object isKindOfClass:wanted];
}

QVariant number_of(NSNumber *number)
{
    if (to_qstring(NSStringFromClass([number class])).trimmed() == boolean_class_name())
        return QVariant([number boolValue] != NO);
    switch (*[number objCType]) {
    case 'f':
    case 'd':
        return [number doubleValue];
    case 'Q':
    case 'L':
        if ([number unsignedLongLongValue] > std::numeric_limits<qint64>::max())
            return QVariant::fromValue<quint64>([number unsignedLongLongValue]);
        [[fallthrough]];
    default:
        return QVariant::fromValue<qint64>([number longLongValue]);
    }
}

QVariantList array_of(NSArray *array)
{
    QVariantList list;
    for (NSUInteger i = 0; i < [array count]; ++i)
        list.append(property_list_value([array objectAtIndex:i]));
    return list;
}

QVariantMap dictionary_of(NSDictionary *dictionary)
{
    QVariantMap map;
    NSArray *keys = [dictionary allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        const id key = [keys objectAtIndex:i];
        map.insert(property_list_value(key).toString(), property_list_value([dictionary objectForKey:key]));
    }
    return map;
}

} // namespace

QString to_qstring(NSString *text)
{
    QString characters(static_cast<qsizetype>([text length]), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar *>(characters.data()) range:NSMakeRange(0, [text length])];
    return characters;
}

NSString *to_nsstring(const QString &text)
{
    return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(text.constData())
                                   length:static_cast<NSUInteger>(text.size())];
}

QVariant property_list_value(const void *object)
{
    const autorelease_pool pool;
    const id value = object_of(object);
    if (is_kind_of(value, [NSString class]))
        return to_qstring(value);
    if (is_kind_of(value, [NSNumber class]))
        return number_of(value);
    if (is_kind_of(value, [NSDate class]))
        return date_of_reference_seconds([value timeIntervalSinceReferenceDate]);
    if (is_kind_of(value, [NSData class]))
        return QByteArray(static_cast<const char *>([value bytes]), static_cast<qsizetype>([value length]));
    if (is_kind_of(value, [NSArray class]))
        return array_of(value);
    if (is_kind_of(value, [NSDictionary class]))
        return dictionary_of(value);
    return {};
}

QVariant property_list_entry(const void *dictionary, const void *key)
{
    const autorelease_pool pool;
    if (!is_kind_of(object_of(dictionary), [NSDictionary class]) || !is_kind_of(object_of(key), [NSString class]))
        return {};
    return property_list_value([object_of(dictionary) objectForKey:object_of(key)]);
}

QString property_list_date_text(const void *date)
{
    const autorelease_pool pool;
    if (!property_list_value(date).toDateTime().isValid()) // the formatter does not take every number for a date
        return {};
    NSDateFormatter *formatter = [[[NSDateFormatter alloc] init] autorelease];
    // Month names must not follow the language of the machine: they are read back as English.
    [formatter setLocale:[[[NSLocale alloc] initWithLocaleIdentifier:@"en_US_POSIX"] autorelease]];
    [formatter setDateFormat:to_nsstring(property_list_date_pattern.toString())];
    return to_qstring([formatter stringFromDate:object_of(date)]);
}

QVariant parse_property_list(const QByteArray &guarded)
{
    const autorelease_pool pool;
    NSData *data = [NSData dataWithBytes:guarded.constData() length:static_cast<NSUInteger>(guarded.size())];
    return property_list_value([NSPropertyListSerialization propertyListWithData:data
                                                                          options:NSPropertyListImmutable
                                                                           format:nullptr
                                                                            error:nullptr]);
}
