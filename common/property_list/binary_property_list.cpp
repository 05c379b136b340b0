// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/property_list/binary_property_list.h"

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

/** False for numbers, dates and the like. */
bool has_count(quint64 kind)
{
    return kind >= data && (kind <= utf16 || kind >= array);
}

} // namespace

binary_property_list::binary_property_list(QByteArrayView list)
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

bool binary_property_list::has_magic(QByteArrayView list)
{
    return list.startsWith(magic);
}

std::optional<binary_property_list::object_view> binary_property_list::object(quint64 index) const
{
    const std::optional<object_header> found = header(index);
    if (!found || found->count >= size)
        return {};

    switch (found->kind) {
    case data:
        return object_view{found->count, 0, 0};
    case ascii:
        return text_object(found->content, found->count, 1);
    case utf16:
        return text_object(found->content, found->count, 2);
    case array:
    case ordered_set:
    case set:
        return object_view{0, found->content, found->count};
    case dictionary:
        return object_view{0, found->content, found->count * 2};
    default:
        return has_count(found->kind) ? std::nullopt : std::optional(object_view());
    }
}

std::optional<quint64> binary_property_list::reference(const object_view &container, quint64 index) const
{
    return number(container.first_reference + index * reference_width, reference_width);
}

std::optional<binary_property_list::object_header> binary_property_list::header(quint64 index) const
{
    if (index >= object_count || index >= size || table >= size)
        return {};
    const std::optional<quint64> offset = number(table + index * offset_width, offset_width);
    const std::optional<quint64> marker = offset ? number(*offset, 1) : std::nullopt;
    if (!marker)
        return {};

    object_header found{*marker >> 4, *marker & 0xF, *offset + 1};
    if (has_count(found.kind) && found.count == 0xF) { // the count stands behind, as an integer object
        const std::optional<quint64> width_marker = number(found.content, 1);
        const quint64 width = width_marker && *width_marker >> 4 == 1 ? quint64(1) << (*width_marker & 0xF) : 0;
        found.count = number(found.content + 1, width).value_or(size);
        found.content += 1 + width;
    }
    return found;
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
