// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/property_list_objects.h"

#include <QtGlobal>

#include <plist/plist.h>

property_list_objects::~property_list_objects()
{
    for (void *root : roots)
        plist_free(root);
}

void *property_list_objects::root(const QByteArray &list)
{
    const auto length = static_cast<uint32_t>(list.size());
    plist_t object = nullptr;
    if (plist_is_binary(list.constData(), length))
        plist_from_bin(list.constData(), length, &object);
    else
        plist_from_xml(list.constData(), length, &object);
    if (!object)
        qFatal("no property list: %s", list.constData());
    roots.push_back(object);
    return object;
}
