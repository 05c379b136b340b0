// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/assigned_numbers.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class test_assigned_numbers : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void classes_data();
    void classes();
    void minor_classes_data();
    void minor_classes();
    void every_service();
    void versions_data();
    void versions();
};

void test_assigned_numbers::classes_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("words"); // services; major; minor

    // clang-format off
    QTest::newRow("headset")              << qint64(0x240404) << u"Rendering, Audio; Audio/Video; Wearable headset"_s;
    QTest::newRow("car")                  << qint64(0x240420) << u"Rendering, Audio; Audio/Video; Car audio"_s;
    QTest::newRow("smartphone")           << qint64(0x5A020C) << u"Networking, Capturing, Object Transfer, Telephony; Phone; Smartphone"_s;
    QTest::newRow("laptop")               << qint64(0x38010C) << u"Capturing, Object Transfer, Audio; Computer; Laptop"_s;
    QTest::newRow("keyboard")             << qint64(0x000540) << u"; Peripheral; Keyboard"_s;
    QTest::newRow("mouse, limited")       << qint64(0x002580) << u"Limited Discoverable Mode; Peripheral; Pointing device"_s;
    QTest::newRow("gamepad")              << qint64(0x002508) << u"Limited Discoverable Mode; Peripheral; Gamepad"_s;
    QTest::newRow("keyboard and remote")  << qint64(0x00054C) << u"; Peripheral; Keyboard, Remote control"_s;
    QTest::newRow("peripheral alone")     << qint64(0x000500) << u"; Peripheral; Uncategorized"_s;
    QTest::newRow("peripheral, reserved") << qint64(0x00053C) << u"; Peripheral; "_s;
    QTest::newRow("printer and scanner")  << qint64(0x0406C0) << u"Rendering; Imaging; Scanner, Printer"_s;
    QTest::newRow("imaging alone")        << qint64(0x000600) << u"; Imaging; Uncategorized"_s;
    QTest::newRow("access point")         << qint64(0x020320) << u"Networking; LAN/Network access point; 1% to 17% utilized"_s;
    QTest::newRow("watch")                << qint64(0x000704) << u"; Wearable; Wristwatch"_s;
    QTest::newRow("game")                 << qint64(0x000814) << u"; Toy; Game"_s;
    QTest::newRow("pulse oximeter")       << qint64(0x000914) << u"; Health; Pulse oximeter"_s;
    QTest::newRow("LE audio, information")<< qint64(0x804000) << u"LE audio, Information; Miscellaneous; "_s;
    QTest::newRow("reserved service")     << qint64(0x008000) << u"; Miscellaneous; "_s;
    QTest::newRow("uncategorized")        << qint64(0x001F00) << u"; Uncategorized; "_s;
    QTest::newRow("major not assigned")   << qint64(0x200A04) << u"Audio; ; "_s;
    QTest::newRow("minor not assigned")   << qint64(0x2004FC) << u"Audio; Audio/Video; "_s;
    QTest::newRow("another format")       << qint64(0x240405) << u"; ; "_s;
    QTest::newRow("25 bits")              << qint64(0x1240404) << u"; ; "_s;
    QTest::newRow("negative")             << qint64(-4) << u"; ; "_s;
    // clang-format on
}

void test_assigned_numbers::classes()
{
    QFETCH(qint64, number);
    QFETCH(QString, words);
    const device_class decoded = class_of_device(number);
    QCOMPARE(QString(decoded.services.join(u", "_s) + u"; "_s + decoded.major + u"; "_s + decoded.minor), words);
}

void test_assigned_numbers::minor_classes_data()
{
    QTest::addColumn<qint64>("number"); // of the first one
    QTest::addColumn<qint64>("step");   // to the next one
    QTest::addColumn<QString>("words"); // major: minors

    // clang-format off
    QTest::newRow("miscellaneous") << qint64(0x000) << qint64(4)  << u"Miscellaneous: "_s;
    QTest::newRow("computers")     << qint64(0x100) << qint64(4)  << u"Computer: Uncategorized, Desktop workstation, Server-class computer, Laptop, Handheld PC/PDA (clamshell), Palm-size PC/PDA, Wearable computer (watch size), Tablet"_s;
    QTest::newRow("phones")        << qint64(0x200) << qint64(4)  << u"Phone: Uncategorized, Cellular, Cordless, Smartphone, Wired modem, Common ISDN access"_s;
    QTest::newRow("access points") << qint64(0x300) << qint64(32) << u"LAN/Network access point: Fully available, 1% to 17% utilized, 17% to 33% utilized, 33% to 50% utilized, 50% to 67% utilized, 67% to 83% utilized, 83% to 99% utilized, No service available"_s;
    QTest::newRow("audio, video")  << qint64(0x400) << qint64(4)  << u"Audio/Video: Uncategorized, Wearable headset, Hands-free, , Microphone, Loudspeaker, Headphones, Portable audio, Car audio, Set-top box, HiFi audio, VCR, Video camera, Camcorder, Video monitor, Video display and loudspeaker, Video conferencing, , Gaming/Toy"_s;
    QTest::newRow("input devices") << qint64(0x500) << qint64(64) << u"Peripheral: Uncategorized, Keyboard, Pointing device, Combo keyboard/pointing device"_s;
    QTest::newRow("peripherals")   << qint64(0x500) << qint64(4)  << u"Peripheral: Uncategorized, Joystick, Gamepad, Remote control, Sensing device, Digitizer tablet, Card reader, Digital pen, Handheld scanner, Handheld gestural input device"_s;
    QTest::newRow("imaging")       << qint64(0x610) << qint64(16) << u"Imaging: Display, Camera, Display+Camera, Scanner, Display+Scanner, Camera+Scanner, Display+Camera+Scanner, Printer"_s;
    QTest::newRow("wearables")     << qint64(0x700) << qint64(4)  << u"Wearable: , Wristwatch, Pager, Jacket, Helmet, Glasses, Pin"_s;
    QTest::newRow("toys")          << qint64(0x800) << qint64(4)  << u"Toy: , Robot, Vehicle, Doll/Action figure, Controller, Game"_s;
    QTest::newRow("health")        << qint64(0x900) << qint64(4)  << u"Health: Undefined, Blood pressure monitor, Thermometer, Weighing scale, Glucose meter, Pulse oximeter, Heart/Pulse rate monitor, Health data display, Step counter, Body composition analyzer, Peak flow monitor, Medication monitor, Knee prosthesis, Ankle prosthesis, Generic health manager, Personal mobility device"_s;
    // clang-format on
}

void test_assigned_numbers::minor_classes()
{
    QFETCH(const qint64, number);
    QFETCH(const qint64, step);
    QFETCH(const QString, words);
    QStringList minors;
    for (qsizetype i = 0; i <= words.count(u", "_s); ++i)
        minors.append(class_of_device(number + i * step).minor.replace(u", "_s, u"+"_s));
    QCOMPARE(QString(class_of_device(number).major + u": "_s + minors.join(u", "_s)), words);
}

void test_assigned_numbers::every_service()
{
    QCOMPARE(class_of_device(0xFFE000).services,
             QStringList({u"Limited Discoverable Mode"_s, u"LE audio"_s, u"Positioning"_s, u"Networking"_s,
                          u"Rendering"_s, u"Capturing"_s, u"Object Transfer"_s, u"Audio"_s, u"Telephony"_s,
                          u"Information"_s}));
}

void test_assigned_numbers::versions_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("version");

    const QStringList names{u"1.0b"_s,     u"1.1"_s, u"1.2"_s, u"2.0 + EDR"_s, u"2.1 + EDR"_s,
                            u"3.0 + HS"_s, u"4.0"_s, u"4.1"_s, u"4.2"_s,       u"5.0"_s,
                            u"5.1"_s,      u"5.2"_s, u"5.3"_s, u"5.4"_s,       u"6.0"_s};
    for (const QString &name : names)
        QTest::newRow(qPrintable(name)) << qint64(names.indexOf(name)) << name;
    QTest::newRow("not assigned") << qint64(15) << QString();
    QTest::newRow("negative") << qint64(-1) << QString();
}

void test_assigned_numbers::versions()
{
    QFETCH(qint64, number);
    QFETCH(QString, version);
    QCOMPARE(QString(bluetooth_version(number)), version);
}

BLUETOOTH_LOGS_TEST(test_assigned_numbers, QCoreApplication)

#include "test_assigned_numbers.moc"
