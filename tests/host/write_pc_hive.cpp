// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/hive_bytes.h"

#include <QString>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const QByteArray secret("abcdefghijklmnop"); // in the place of every key of a pairing
constexpr quint64 may_2024 = 133604142650000000;
constexpr quint64 never = 0;
constexpr quint64 unset = 0xffffffffffffffff;

hive_key devices()
{
    const hive_key headset{"3c286d1a904e",
                           {{"Name", hive_binary, QByteArray("Rental car", 11)},
                            hive_text_value("FriendlyName", u"=HYPERLINK(\"http://example.invalid\")"_s),
                            hive_number_value("COD", 0x240404),
                            hive_time_value("LastSeen", may_2024),
                            hive_time_value("LastConnected", never)}};
    const hive_key mouse{"d0112233445e", {{"LEName", hive_binary, "Mouse"}, hive_time_value("LastSeen", unset)}};
    return {"Devices", {}, {headset, mouse}};
}

hive_key keys()
{
    const hive_key mouse{"d0112233445e",
                         {{"LTK", hive_binary, secret},
                          {"ERand", hive_long_number, secret.first(8)},
                          {"EDIV", hive_number, "abcd"}}};
    return {"Keys",
            {},
            {{"a0b1c2d3e4f5", {{"3c286d1a904e", hive_binary, secret}, {"MasterIRK", hive_binary, secret}}, {mouse}}}};
}

} // namespace

/** Prints the SYSTEM hive of a PC that knows a headset and an LE mouse. An argument: it was not closed in order. */
int main(int count, char **)
{
    const hive_key parameters{"Parameters", {}, {devices(), keys()}};
    const hive_key set{"ControlSet001", {}, {{"Services", {}, {{"BTHPORT", {}, {parameters}}}}}};
    const quint32 second_sequence = count > 1 ? 2 : 3;
    const QByteArray hive = hive_bytes({"root", {}, {set, {"Select", {hive_number_value("Current", 1)}}}}, 3,
                                       second_sequence);
    return std::fwrite(hive.constData(), 1, size_t(hive.size()), stdout) == size_t(hive.size()) ? 0 : 1;
}
