// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/binary_property_list.h"

namespace {

constexpr QByteArrayView magic = "bplist00";
constexpr quint64 trailer_bytes = 32;

/** An object's kind, in the upper four bits of its first byte; the lower four are its count. */
enum object_kind : quint64 {
    data = 0x4,
    ascii = 0x5,
    utf16 = 0x6,
    array = 0xA,
    ordered_set = 0xB,
    set = 0xC,
    dictionary = 0xD,
};

} // namespace

binary_property_list::binary_property_list(const QByteArray &list)
    : bytes(list)
    , size(static_cast<quint64>(list.size()))
{
    if (size < trailer_bytes)
        return;
    const quint64 trailer = size - trailer_bytes;
    offset_width = number(trailer + 6, 1).value_or(0);
    reference_width = number(trailer + 7, 1).value_or(0);
    object_count = number(trailer + 8, 8).value_or(0);
    top = number(trailer + 16, 8).value_or(0);
    table = number(trailer + 24, 8).value_or(0);
}

bool binary_property_list::is_one(const QByteArray &list)
{
    return list.startsWith(magic);
}

std::optional<binary_property_list::object_view> binary_property_list::object(quint64 index) const
{
    if (index >= object_count || index >= size || table >= size)
        return {};
    const std::optional<quint64> offset = number(table + index * offset_width, offset_width);
    const std::optional<quint64> marker = offset ? number(*offset, 1) : std::nullopt;
    if (!marker)
        return {};

    const quint64 kind = *marker >> 4;
    if (kind < data || (kind > utf16 && kind < array))
        return object_view(); // a number, a date or the like
    quint64 count = *marker & 0xF;
    quint64 content = *offset + 1;
    if (count == 0xF) { // the count stands behind, as an integer object
        const std::optional<quint64> width_marker = number(content, 1);
        const quint64 width = width_marker && *width_marker >> 4 == 1 ? quint64(1) << (*width_marker & 0xF) : 0;
        count = number(content + 1, width).value_or(size);
        content += 1 + width;
    }
    if (count >= size)
        return {};

    switch (kind) {
    case data:
        return object_view{count, 0, 0};
    case ascii:
        return text_object(content, count, 1);
    case utf16:
        return text_object(content, count, 2);
    case array:
    case ordered_set:
    case set:
        return object_view{0, content, count};
    case dictionary:
        return object_view{0, content, count * 2};
    default:
        return {};
    }
}

std::optional<quint64> binary_property_list::reference(const object_view &container, quint64 index) const
{
    return number(container.first_reference + index * reference_width, reference_width);
}

/** The number of @p width bytes at @p position, unless it lies outside or has a width that no writer uses. */
std::optional<quint64> binary_property_list::number(quint64 position, quint64 width) const
{
    if (width < 1 || (width > 4 && width != 8) || position > size || width > size - position)
        return {};
    quint64 value = 0;
    for (quint64 i = 0; i < width; ++i)
        value = value << 8 | static_cast<quint8>(bytes[static_cast<qsizetype>(position + i)]);
    return value;
}

/** Nothing for a text with a NUL: parsers that keep texts as C strings take it for a shorter one, or give up. */
std::optional<binary_property_list::object_view> binary_property_list::text_object(quint64 content, quint64 characters,
                                                                                   quint64 width) const
{
    for (quint64 i = 0; i < characters; ++i) {
        if (number(content + i * width, width).value_or(0) == 0)
            return {};
    }
    return object_view{characters * width, 0, 0};
}
