// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// The declarations of Foundation that common/platform/ uses, written from Apple's public documentation, each with the
// types that are documented. Nothing stands behind them: they let a compiler check our files where there is no Mac.

#ifndef TESTS_SUPPORT_APPLE_STUBS_FOUNDATION_FOUNDATION_H
#define TESTS_SUPPORT_APPLE_STUBS_FOUNDATION_FOUNDATION_H

using NSInteger = long;
using NSUInteger = unsigned long;
using NSTimeInterval = double;
using unichar = unsigned short;
using BOOL = signed char;
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

struct NSRange
{
    NSUInteger location;
    NSUInteger length;
};

inline NSRange NSMakeRange(NSUInteger location, NSUInteger length)
{
    return {location, length};
}

@class NSData, NSDate, NSError, NSString;

@protocol NSObject
- (Class)class;
- (BOOL)isKindOfClass:(Class)wanted;
- (BOOL)respondsToSelector:(SEL)selector;
- (instancetype)retain;
- (oneway void)release;
- (instancetype)autorelease;
- (NSString *)description;
@end

__attribute__((objc_root_class))
@interface NSObject <NSObject>
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
@end

extern "C" NSString *NSStringFromClass(Class wanted);

@interface NSAutoreleasePool : NSObject
- (void)drain;
@end

@interface NSException : NSObject
@property (readonly, copy) NSString *name;
@property (readonly, copy) NSString *reason;
@end

@interface NSString : NSObject
@property (readonly) NSUInteger length;
+ (instancetype)stringWithCharacters:(const unichar *)characters length:(NSUInteger)length;
- (void)getCharacters:(unichar *)buffer range:(NSRange)range;
@end

// What a literal is of.
@interface NSConstantString : NSString
@end

@interface NSValue : NSObject
@property (readonly) const char *objCType __attribute__((objc_returns_inner_pointer));
@end

@interface NSNumber : NSValue
@property (readonly) BOOL boolValue;
@property (readonly) double doubleValue;
@property (readonly) long long longLongValue;
@property (readonly) unsigned long long unsignedLongLongValue;
@end

@interface NSDate : NSObject
@property (readonly) NSTimeInterval timeIntervalSinceReferenceDate;
+ (instancetype)dateWithTimeIntervalSinceReferenceDate:(NSTimeInterval)seconds;
@end

@interface NSData : NSObject
@property (readonly) NSUInteger length;
@property (readonly) const void *bytes __attribute__((objc_returns_inner_pointer));
+ (instancetype)dataWithBytes:(const void *)bytes length:(NSUInteger)length;
@end

@interface NSArray<__covariant Entry> : NSObject
@property (readonly) NSUInteger count;
- (Entry)objectAtIndex:(NSUInteger)index;
@end

@interface NSDictionary<__covariant Key, __covariant Entry> : NSObject
@property (readonly, copy) NSArray<Key> *allKeys;
- (Entry)objectForKey:(Key)key;
@end

@interface NSLocale : NSObject
- (instancetype)initWithLocaleIdentifier:(NSString *)identifier;
@end

using NSCalendarIdentifier = NSString *;
extern "C" NSCalendarIdentifier const NSCalendarIdentifierGregorian;

@interface NSCalendar : NSObject
+ (NSCalendar *)calendarWithIdentifier:(NSCalendarIdentifier)identifier;
- (id)initWithCalendarIdentifier:(NSCalendarIdentifier)identifier;
@end

@interface NSDateFormatter : NSObject
@property (copy) NSLocale *locale;
@property (copy) NSCalendar *calendar;
@property (copy) NSString *dateFormat;
@property (copy) NSDate *gregorianStartDate;
- (NSString *)stringFromDate:(NSDate *)date;
@end

enum NSPropertyListMutabilityOptions : NSUInteger {
    NSPropertyListImmutable = 0,
};
using NSPropertyListReadOptions = NSPropertyListMutabilityOptions;
enum NSPropertyListFormat : NSUInteger {
    NSPropertyListXMLFormat_v1_0 = 100,
    NSPropertyListBinaryFormat_v1_0 = 200,
};

@interface NSPropertyListSerialization : NSObject
+ (id)propertyListWithData:(NSData *)data
                   options:(NSPropertyListReadOptions)options
                    format:(NSPropertyListFormat *)format
                     error:(out NSError **)error;
@end

#endif
