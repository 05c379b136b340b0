// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/device_address.h"

using namespace Qt::StringLiterals;

namespace {

/** By the two highest bits: Bluetooth Core Specification, volume 6, part B, section 1.3.2. */
constexpr QLatin1StringView random_kinds[] = {"non-resolvable"_L1, "resolvable"_L1, "reserved"_L1, "static"_L1};

bool is_separator(char character)
{
    return character == ':' || character == '-' || character == '.' || character == ' ';
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
    device_address address;
    QByteArray rest = text.trimmed().toByteArray().toLower();
    if (rest.startsWith("random ")) {
        address.is_random = true;
        rest.remove(0, 7);
    } else if (rest.startsWith("public ")) {
        rest.remove(0, 7);
    }
    QByteArray digits;
    for (const char character : std::as_const(rest)) {
        const bool is_digit = (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
        if (is_digit)
            digits.append(character);
        else if (!is_separator(character))
            return {};
    }
    if (digits.size() != 12)
        return {};
    for (qsizetype byte = 0; byte < 6; ++byte)
        address.bytes += (byte == 0 ? "" : ":") + digits.mid(2 * byte, 2);
    return address;
}
