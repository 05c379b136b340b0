// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// The declarations of Core Foundation and Metadata that common/platform/ uses; see Foundation/Foundation.h.

#ifndef TESTS_SUPPORT_APPLE_STUBS_CORESERVICES_CORESERVICES_H
#define TESTS_SUPPORT_APPLE_STUBS_CORESERVICES_CORESERVICES_H

using CFTypeRef = const void *;
using CFAllocatorRef = const struct __CFAllocator *;
using CFStringRef = const struct __CFString *;
using MDItemRef = struct __MDItem *;

#define CFSTR(text) reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString(text))

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
void CFRelease(CFTypeRef reference);
MDItemRef MDItemCreate(CFAllocatorRef allocator, CFStringRef path);
CFTypeRef MDItemCopyAttribute(MDItemRef item, CFStringRef name);
}

#endif
