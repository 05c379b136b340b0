// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/device_address.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

/** By the two highest bits: Bluetooth Core Specification, volume 6, part B, section 1.3.2. */
constexpr QLatin1StringView random_kinds[] = {"non-resolvable"_L1, "resolvable"_L1, "reserved"_L1, "static"_L1};

bool is_separator(char character)
{
    return character == ':' || character == '-' || character == '.' || character == ' ';
}

/** Letter case aside. */
bool starts_with_word(QByteArrayView text, QByteArrayView word)
{
    return text.size() >= word.size() && text.first(word.size()).compare(word, Qt::CaseInsensitive) == 0;
}

} // namespace

QLatin1StringView device_address::kind() const
{
    return is_random ? random_kinds[bytes.first(2).toUInt(nullptr, 16) >> 6] : "public"_L1;
}

bool device_address::joins_sources() const
{
    return !is_random && bytes != "00:00:00:00:00:00";
}

std::optional<device_address> parse_device_address(QByteArrayView text)
{
    constexpr QByteArrayView random_word("random ");
    constexpr QByteArrayView public_word("public ");
    device_address address;
    QByteArrayView rest = text.trimmed();
    address.is_random = starts_with_word(rest, random_word);
    if (address.is_random || starts_with_word(rest, public_word))
        rest = rest.sliced(random_word.size());
    std::array<char, 17> bytes = {};
    bytes.fill(':');
    qsizetype digits = 0;
    for (const char character : rest) {
        const char lower = character >= 'A' && character <= 'F' ? char(character + ('a' - 'A')) : character;
        const bool is_digit = (lower >= '0' && lower <= '9') || (lower >= 'a' && lower <= 'f');
        if (is_digit && digits < 12)
            bytes[size_t(digits + digits / 2)] = lower;
        else if (!is_separator(lower))
            return {};
        digits += is_digit ? 1 : 0;
    }
    if (digits != 12)
        return {};
    address.bytes = QByteArray(bytes.data(), qsizetype(bytes.size()));
    return address;
}
