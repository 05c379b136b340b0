// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_FOUNDATION_H
#define COMMON_PLATFORM_FOUNDATION_H

#include <QString>

#import <Foundation/Foundation.h>

/** A pool for the objects of one call; drained on every way out of the scope. */
class autorelease_pool
{
public:
    autorelease_pool() = default;
    ~autorelease_pool()
    {
        [pool drain];
    }
    Q_DISABLE_COPY_MOVE(autorelease_pool)

private:
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
};

/** Texts go from one side to the other as UTF-16, which both hold. */
QString to_qstring(NSString *text);
NSString *to_nsstring(const QString &text);

/** The name of the class that a number is of when it was made of a boolean. Each platform has its own. */
QString boolean_class_name();

#endif
