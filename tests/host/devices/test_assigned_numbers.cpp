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

void test_assigned_numbers::versions_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<QString>("version");

    QTest::newRow("first") << qint64(0) << u"1.0b"_s;
    QTest::newRow("2.1") << qint64(4) << u"2.1 + EDR"_s;
    QTest::newRow("4.0") << qint64(6) << u"4.0"_s;
    QTest::newRow("5.0") << qint64(9) << u"5.0"_s;
    QTest::newRow("5.3") << qint64(12) << u"5.3"_s;
    QTest::newRow("last") << qint64(14) << u"6.0"_s;
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
