// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/json_text.h"

#include <QLocale>

#include <cmath>
#include <utility>

#include <utf8proc.h>

namespace {

constexpr char hex_digits[] = "0123456789abcdef";

void append_escape(QByteArray &json, unsigned character)
{
    json.append("\\u");
    for (int shift = 12; shift >= 0; shift -= 4)
        json.append(hex_digits[(character >> shift) & 0xf]);
}

bool acts_on_its_reader(unsigned character)
{
    return (character >= 0x80 && character <= 0x9f) || character == 0x061c || character == 0x200e || character == 0x200f
           || (character >= 0x2028 && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069)
           || character == 0xfeff;
}

/** The first character of the bytes and how many of them it takes; a byte that is no UTF-8 stands for itself. */
std::pair<unsigned, qsizetype> first_character(QByteArrayView utf8)
{
    utf8proc_int32_t character = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t *>(utf8.data()),
                                                     utf8.size(), &character);
    return length > 0 ? std::pair(unsigned(character), qsizetype(length)) : std::pair(0u, qsizetype(1));
}

/** Appends the character below 0x80 that stands for itself in no string. */
void append_ascii_escape(QByteArray &json, char character)
{
    switch (character) {
    case '"':
        json.append("\\\"");
        break;
    case '\\':
        json.append("\\\\");
        break;
    case '\n':
        json.append("\\n");
        break;
    case '\t':
        json.append("\\t");
        break;
    default:
        append_escape(json, static_cast<unsigned char>(character));
    }
}

bool is_plain(char character)
{
    return character >= ' ' && character < 0x7f && character != '"' && character != '\\';
}

void append_base64(QByteArray &json, QByteArrayView bytes)
{
    json.append("{\"base64\":\"");
    json.append(QByteArray::fromRawData(bytes.data(), bytes.size()).toBase64());
    json.append("\"}");
}

void append_real(QByteArray &json, double number)
{
    if (!std::isfinite(number)) {
        json.append(number < 0 ? "{\"real\":\"-inf\"}" : "{\"real\":\"inf\"}");
        return;
    }
    const QByteArray text = QByteArray::number(number, 'g', QLocale::FloatingPointShortest);
    json.append(text);
    if (!text.contains('.') && !text.contains('e'))
        json.append(".0");
}

/** Appends the character outside of ASCII that @p utf8 begins with, and gives the bytes that it takes. */
qsizetype append_other(QByteArray &json, QByteArrayView utf8)
{
    const auto [character, length] = first_character(utf8);
    if (acts_on_its_reader(character))
        append_escape(json, character);
    else
        json.append(utf8.first(length));
    return length;
}

} // namespace

void append_json_text(QByteArray &json, QByteArrayView utf8)
{
    json.append('"');
    qsizetype begin = 0; // of the bytes that stand for themselves
    qsizetype at = 0;
    const auto append_plain = [&] { json.append(utf8.sliced(begin, at - begin)); };
    while (at < utf8.size()) {
        const char byte = utf8.at(at);
        if (is_plain(byte)) {
            ++at;
            continue;
        }
        const bool is_ascii = static_cast<unsigned char>(byte) < 0x80;
        const auto [character, length] = first_character(utf8.sliced(at));
        if (is_ascii || acts_on_its_reader(character)) {
            append_plain();
            if (is_ascii)
                append_ascii_escape(json, byte);
            else
                append_escape(json, character);
            begin = at + length;
        }
        at += length;
    }
    append_plain();
    json.append('"');
}

void append_json_bytes(QByteArray &json, QByteArrayView bytes)
{
    if (bytes.isValidUtf8())
        append_json_text(json, bytes);
    else
        append_base64(json, bytes);
}

void append_json_value(QByteArray &json, const cell &value)
{
    switch (value.kind) {
    case cell::type::null:
        json.append("null");
        break;
    case cell::type::integer:
        json.append(QByteArray::number(value.integer));
        break;
    case cell::type::real:
        append_real(json, value.real);
        break;
    case cell::type::text:
        append_json_bytes(json, value.bytes);
        break;
    case cell::type::blob:
        append_base64(json, value.bytes);
        break;
    }
}

void append_escaped_json(QByteArray &json, QByteArrayView made_by_qt)
{
    for (qsizetype at = 0; at < made_by_qt.size();) {
        const char byte = made_by_qt.at(at);
        if (static_cast<unsigned char>(byte) >= 0x80) {
            at += append_other(json, made_by_qt.sliced(at));
            continue;
        }
        if (byte == 0x7f)
            append_escape(json, 0x7f);
        else
            json.append(byte);
        ++at;
    }
}
