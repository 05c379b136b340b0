// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/foundation.h"
#include "common/platform/spotlight.h"

#include <memory>

#import <CoreServices/CoreServices.h>

using namespace Qt::StringLiterals;

namespace
{

using owned_reference = std::unique_ptr<const void, decltype(&CFRelease)>;

owned_reference owned(CFTypeRef reference)
{
    return owned_reference(reference, CFRelease);
}

QString description_of(MDItemRef item, CFStringRef attribute)
{
    const owned_reference value = owned(MDItemCopyAttribute(item, attribute));
    return value ? to_qstring([static_cast<id>(const_cast<void *>(value.get())) description]) : QString();
}

} // namespace

QString boolean_class_name()
{
    return u"__NSCFBoolean"_s;
}

spotlight_descriptions read_spotlight_descriptions(const QString &path)
{
    return result_of([&path] {
        const MDItemRef item = MDItemCreate(kCFAllocatorDefault, reinterpret_cast<CFStringRef>(to_nsstring(path)));
        if (!item)
            return spotlight_descriptions();
        const owned_reference owned_item = owned(item);
        return spotlight_descriptions{description_of(item, CFSTR("kMDItemLastUsedDate")),
                                      description_of(item, CFSTR("kMDItemUsedDates"))};
    });
}
