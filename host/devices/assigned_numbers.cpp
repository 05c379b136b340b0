// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/assigned_numbers.h"

#include <span>

using namespace Qt::StringLiterals;

namespace {

using words = std::span<const QLatin1StringView>;

constexpr QLatin1StringView versions[] = {
    "1.0b"_L1, "1.1"_L1, "1.2"_L1, "2.0 + EDR"_L1, "2.1 + EDR"_L1, "3.0 + HS"_L1, "4.0"_L1, "4.1"_L1,
    "4.2"_L1,  "5.0"_L1, "5.1"_L1, "5.2"_L1,       "5.3"_L1,       "5.4"_L1,      "6.0"_L1,
};

constexpr int first_service_bit = 13;
constexpr QLatin1StringView services[] = {
    "Limited Discoverable Mode"_L1,
    "LE audio"_L1,
    {},
    "Positioning"_L1,
    "Networking"_L1,
    "Rendering"_L1,
    "Capturing"_L1,
    "Object Transfer"_L1,
    "Audio"_L1,
    "Telephony"_L1,
    "Information"_L1,
};

constexpr QLatin1StringView computers[] = {
    "Uncategorized"_L1,
    "Desktop workstation"_L1,
    "Server-class computer"_L1,
    "Laptop"_L1,
    "Handheld PC/PDA (clamshell)"_L1,
    "Palm-size PC/PDA"_L1,
    "Wearable computer (watch size)"_L1,
    "Tablet"_L1,
};
constexpr QLatin1StringView phones[] = {
    "Uncategorized"_L1, "Cellular"_L1, "Cordless"_L1, "Smartphone"_L1, "Wired modem"_L1, "Common ISDN access"_L1,
};
constexpr QLatin1StringView access_points[] = {
    "Fully available"_L1,     "1% to 17% utilized"_L1,  "17% to 33% utilized"_L1, "33% to 50% utilized"_L1,
    "50% to 67% utilized"_L1, "67% to 83% utilized"_L1, "83% to 99% utilized"_L1, "No service available"_L1,
};
constexpr QLatin1StringView audio_video[] = {
    "Uncategorized"_L1,      "Wearable headset"_L1,
    "Hands-free"_L1,         {},
    "Microphone"_L1,         "Loudspeaker"_L1,
    "Headphones"_L1,         "Portable audio"_L1,
    "Car audio"_L1,          "Set-top box"_L1,
    "HiFi audio"_L1,         "VCR"_L1,
    "Video camera"_L1,       "Camcorder"_L1,
    "Video monitor"_L1,      "Video display and loudspeaker"_L1,
    "Video conferencing"_L1, {},
    "Gaming/Toy"_L1,
};
constexpr QLatin1StringView input_devices[] = {
    {},
    "Keyboard"_L1,
    "Pointing device"_L1,
    "Combo keyboard/pointing device"_L1,
};
constexpr QLatin1StringView peripherals[] = {
    {},
    "Joystick"_L1,
    "Gamepad"_L1,
    "Remote control"_L1,
    "Sensing device"_L1,
    "Digitizer tablet"_L1,
    "Card reader"_L1,
    "Digital pen"_L1,
    "Handheld scanner"_L1,
    "Handheld gestural input device"_L1,
};
constexpr QLatin1StringView imaging[] = {"Display"_L1, "Camera"_L1, "Scanner"_L1, "Printer"_L1};
constexpr QLatin1StringView wearables[] = {
    {}, "Wristwatch"_L1, "Pager"_L1, "Jacket"_L1, "Helmet"_L1, "Glasses"_L1, "Pin"_L1,
};
constexpr QLatin1StringView toys[] = {
    {}, "Robot"_L1, "Vehicle"_L1, "Doll/Action figure"_L1, "Controller"_L1, "Game"_L1,
};
constexpr QLatin1StringView health[] = {
    "Undefined"_L1,
    "Blood pressure monitor"_L1,
    "Thermometer"_L1,
    "Weighing scale"_L1,
    "Glucose meter"_L1,
    "Pulse oximeter"_L1,
    "Heart/Pulse rate monitor"_L1,
    "Health data display"_L1,
    "Step counter"_L1,
    "Body composition analyzer"_L1,
    "Peak flow monitor"_L1,
    "Medication monitor"_L1,
    "Knee prosthesis"_L1,
    "Ankle prosthesis"_L1,
    "Generic health manager"_L1,
    "Personal mobility device"_L1,
};

QString word_at(words list, qint64 place)
{
    return place < qint64(list.size()) ? QString(list[size_t(place)]) : QString();
}

/** A word for each bit that is set. */
QStringList words_of_bits(words list, qint64 bits)
{
    QStringList found;
    for (size_t i = 0; i < list.size(); ++i) {
        if ((bits >> i & 1) != 0 && !list[i].isEmpty())
            found.append(list[i]);
    }
    return found;
}

// The minor class has six bits, which some major classes divide.

QString peripheral(qint64 minor)
{
    QStringList parts{word_at(input_devices, minor >> 4), word_at(peripherals, minor & 0xf)};
    parts.removeAll(QString());
    return minor == 0 ? u"Uncategorized"_s : QString(parts.join(u", "_s));
}

QString imager(qint64 minor)
{
    return minor == 0 ? u"Uncategorized"_s : QString(words_of_bits(imaging, minor >> 2).join(u", "_s));
}

QString access_point(qint64 minor)
{
    return word_at(access_points, minor >> 3);
}

struct major_class
{
    qint64 number;
    QLatin1StringView name;
    words minors;
    QString (*minor_words)(qint64 minor);
};

constexpr major_class major_classes[] = {
    {0, "Miscellaneous"_L1, {}, nullptr},
    {1, "Computer"_L1, computers, nullptr},
    {2, "Phone"_L1, phones, nullptr},
    {3, "LAN/Network access point"_L1, {}, access_point},
    {4, "Audio/Video"_L1, audio_video, nullptr},
    {5, "Peripheral"_L1, {}, peripheral},
    {6, "Imaging"_L1, {}, imager},
    {7, "Wearable"_L1, wearables, nullptr},
    {8, "Toy"_L1, toys, nullptr},
    {9, "Health"_L1, health, nullptr},
    {31, "Uncategorized"_L1, {}, nullptr},
};

} // namespace

device_class class_of_device(qint64 number)
{
    constexpr qint64 format_bits = 3; // 0 is the only format
    device_class result;
    if (number < 0 || number >= 1 << 24 || (number & format_bits) != 0)
        return result;
    result.services = words_of_bits(services, number >> first_service_bit);
    for (const major_class &major : major_classes) {
        if (major.number != (number >> 8 & 0x1f))
            continue;
        const qint64 minor = number >> 2 & 0x3f;
        result.major = major.name;
        result.minor = major.minor_words ? major.minor_words(minor) : word_at(major.minors, minor);
    }
    return result;
}

QLatin1StringView bluetooth_version(qint64 lmp_version)
{
    return lmp_version >= 0 && lmp_version < qint64(std::size(versions)) ? versions[lmp_version] : QLatin1StringView();
}

QLatin1StringView vendor_source(const std::optional<qint64> &number)
{
    return number == 1 ? "SIG"_L1 : number == 2 ? "USB"_L1 : QLatin1StringView();
}
