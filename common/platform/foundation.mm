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

QVariant value_of(id value);

QVariantList array_of(NSArray *array)
{
    QVariantList list;
    for (NSUInteger i = 0; i < [array count]; ++i)
        list.append(value_of([array objectAtIndex:i]));
    return list;
}

QVariantMap dictionary_of(NSDictionary *dictionary)
{
    QVariantMap map;
    NSArray *keys = [dictionary allKeys];
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        const id key = [keys objectAtIndex:i];
        map.insert(value_of(key).toString(), value_of([dictionary objectForKey:key]));
    }
    return map;
}

QVariant value_of(id value)
{
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

void without_exceptions(const std::function<void()> &work)
{
    const autorelease_pool pool;
    @try {
        work();
    } @catch (NSException *exception) {
        Q_UNUSED(exception)
    }
}

QVariant property_list_value(const void *object)
{
    return result_of([object] { return value_of(object_of(object)); });
}

QVariant property_list_entry(const void *dictionary, const void *key)
{
    return result_of([=] { // GCC takes a list of two for a message
        if (!is_kind_of(object_of(dictionary), [NSDictionary class]) || !is_kind_of(object_of(key), [NSString class]))
            return QVariant();
        return value_of([object_of(dictionary) objectForKey:object_of(key)]);
    });
}

QVariant parse_property_list(const QByteArray &guarded)
{
    return result_of([&guarded] {
        NSData *data = [NSData dataWithBytes:guarded.constData() length:static_cast<NSUInteger>(guarded.size())];
        return value_of([NSPropertyListSerialization propertyListWithData:data
                                                                  options:NSPropertyListImmutable
                                                                   format:nullptr
                                                                    error:nullptr]);
    });
}
