// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/property_list_objects.h"

#include "common/platform/foundation.h"

property_list_objects::~property_list_objects()
{
    for (void *root : roots)
        [static_cast<id>(root) release];
}

void *property_list_objects::root(const QByteArray &list)
{
    const autorelease_pool pool;
    NSData *data = [NSData dataWithBytes:list.constData() length:static_cast<NSUInteger>(list.size())];
    const id object = [NSPropertyListSerialization propertyListWithData:data
                                                                options:NSPropertyListImmutable
                                                                 format:nullptr
                                                                  error:nullptr];
    if (!object)
        qFatal("no property list: %s", list.constData());
    roots.push_back([object retain]);
    return roots.back();
}
