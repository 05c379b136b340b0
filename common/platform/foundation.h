// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_FOUNDATION_H
#define COMMON_PLATFORM_FOUNDATION_H

#include <QString>

#include <functional>

#import <Foundation/Foundation.h>

#ifdef __has_feature
#if __has_feature(objc_arc)
#error "The files of Foundation count references themselves: compile them with -fno-objc-arc"
#endif
#endif

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

/** Does the work, up to an exception that Foundation raises. Frees the objects left to the autorelease pool. */
void without_exceptions(const std::function<void()> &work);

/** What @p work gives, or an empty result after an exception. Each function of the seam does its work so. */
template<typename Work>
auto result_of(Work work)
{
    decltype(work()) result{};
    without_exceptions([&result, &work] { result = work(); });
    return result;
}

/** Texts go from one side to the other as UTF-16, which both hold. */
QString to_qstring(NSString *text);
NSString *to_nsstring(const QString &text);

/** The name of the class that a number is of when it was made of a boolean. Each platform has its own. */
QString boolean_class_name();

#endif
