// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/property_list_objects.h"

#include <QtGlobal>

#include <clocale>

#include <locale.h>
#include <plist/plist.h>

property_list_objects::~property_list_objects()
{
    for (void *root : roots)
        plist_free(root);
}

namespace {

/** Reads numbers with a decimal point while it lives, which libplist leaves to the machine's locale. */
class point_in_numbers
{
public:
    point_in_numbers() = default;
    ~point_in_numbers()
    {
        ::uselocale(before);
        ::freelocale(with_point);
    }
    Q_DISABLE_COPY_MOVE(point_in_numbers)

private:
    locale_t with_point = ::newlocale(LC_NUMERIC_MASK, "C", locale_t());
    locale_t before = ::uselocale(with_point);
};

} // namespace

void *property_list_objects::root(const QByteArray &list)
{
    const point_in_numbers in_numbers;
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
