// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/binary_dictionaries.h"

#include <QString>
#include <QStringDecoder>

namespace {

constexpr QByteArrayView magic("bplist00");
constexpr quint64 trailer_bytes = 32;

// Kinds of objects: the four high bits of their first byte.
constexpr int integer_kind = 0x1;
constexpr int ascii_kind = 0x5;
constexpr int utf16_kind = 0x6;
constexpr int dictionary_kind = 0xd;
constexpr quint64 longer_count = 0xf; ///< in the low bits: an integer object with the count follows

} // namespace

binary_dictionaries::binary_dictionaries(QByteArrayView list)
    : bytes(list)
{
    const auto size = quint64(list.size());
    if (!list.startsWith(magic) || size < quint64(magic.size()) + trailer_bytes)
        return;
    const quint64 trailer = size - trailer_bytes;
    offset_width = number(trailer + 6, 1).value_or(0);
    reference_width = number(trailer + 7, 1).value_or(0);
    object_count = number(trailer + 8, 8).value_or(0);
    offset_table = number(trailer + 24, 8).value_or(0);
    top_object = number(trailer + 16, 8);
}

bool binary_dictionaries::take_steps(quint64 count) const
{
    steps_left -= qMin(steps_left, count);
    return steps_left > 0;
}

std::optional<QByteArrayView> binary_dictionaries::bytes_at(quint64 position, quint64 count) const
{
    const auto size = quint64(bytes.size());
    if (position > size || count > size - position)
        return {};
    return bytes.sliced(qsizetype(position), qsizetype(count));
}

std::optional<quint64> binary_dictionaries::number(quint64 position, quint64 width) const
{
    const std::optional<QByteArrayView> digits = width <= 8 ? bytes_at(position, width) : std::nullopt;
    if (!digits)
        return {};
    quint64 value = 0;
    for (const char digit : *digits)
        value = value << 8 | uchar(digit);
    return value;
}

std::optional<binary_dictionaries::header> binary_dictionaries::header_of(quint64 object) const
{
    if (object >= object_count || object > quint64(bytes.size()))
        return {};
    const std::optional<quint64> position = number(offset_table + object * offset_width, offset_width);
    const std::optional<quint64> first = position ? number(*position, 1) : std::nullopt;
    if (!first)
        return {};
    header result{int(*first >> 4), *first & 0xf, *position + 1};
    if (result.count != longer_count)
        return result;
    const std::optional<quint64> marker = number(result.position, 1);
    if (!marker || *marker >> 4 != integer_kind)
        return {};
    const quint64 width = quint64(1) << (*marker & 0xf);
    const std::optional<quint64> count = number(result.position + 1, width);
    if (!count)
        return {};
    result.count = *count;
    result.position += 1 + width;
    return result;
}

bool binary_dictionaries::for_each(quint64 dictionary,
                                   const std::function<void(quint64 key, quint64 value)> &tell) const
{
    const std::optional<header> found = header_of(dictionary);
    if (!found || found->kind != dictionary_kind || reference_width == 0)
        return false;
    if (found->count > quint64(bytes.size())
        || !bytes_at(found->position, 2 * found->count * reference_width)) // the keys, then the values
        return false;
    for (quint64 pair = 0; pair < found->count && take_steps(1); ++pair) {
        const std::optional<quint64> key = number(found->position + pair * reference_width, reference_width);
        const std::optional<quint64> value = number(found->position + (found->count + pair) * reference_width,
                                                    reference_width);
        if (key && value)
            tell(*key, *value);
    }
    return true;
}

std::optional<quint64> binary_dictionaries::value_of(quint64 dictionary, QByteArrayView key) const
{
    std::optional<quint64> result;
    for_each(dictionary, [&](quint64 one, quint64 value) {
        if (!result && text(one) == key)
            result = value;
    });
    return result;
}

std::optional<QByteArray> binary_dictionaries::text(quint64 object) const
{
    const std::optional<header> found = header_of(object);
    if (!found || found->count > quint64(bytes.size()) || !take_steps(found->count))
        return {};
    if (found->kind == ascii_kind) {
        const std::optional<QByteArrayView> content = bytes_at(found->position, found->count);
        return content ? std::optional(QString::fromLatin1(*content).toUtf8()) : std::nullopt;
    }
    if (found->kind != utf16_kind)
        return {};
    const std::optional<QByteArrayView> content = bytes_at(found->position, 2 * found->count);
    if (!content)
        return {};
    QStringDecoder decode(QStringDecoder::Utf16BE, QStringDecoder::Flag::ConvertInitialBom);
    const QString decoded = decode(*content);
    return decoded.toUtf8();
}
