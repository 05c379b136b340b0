// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/registry_devices.h"
#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/hive_bytes.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString hive_path = u"sample/windows/Windows/System32/config/SYSTEM"_s;
const QStringList extract_windows{u"extract"_s, u"-i"_s, u"sample/windows"_s, u"-o"_s, u"case"_s};

QByteArray hive_with_a_device(quint32 first_sequence, quint32 second_sequence)
{
    const hive_key device{"b4c26a7fd37a", {{"Name", hive_binary, "Car"}}};
    const hive_key parameters{"Parameters", {}, {{"Devices", {}, {device}}}};
    const hive_key set{"ControlSet001", {}, {{"Services", {}, {{"BTHPORT", {}, {parameters}}}}}};
    return hive_bytes({"root", {}, {set, {"Select", {hive_number_value("Current", 1)}}}}, first_sequence,
                      second_sequence);
}

/** Hives that lead their reader astray, each with two devices. */
struct hostile_hive
{
    const char *name;
    QByteArray bytes;
    qint64 count; ///< of the devices that can be read all the same
};

QList<hostile_hive> hostile_hives()
{
    const QByteArray address = "b4c26a7fd37a";
    const hive_key devices{"Devices", {}, {{address, {{"Name", hive_binary, "abcdefgh"}}}, {"001122334455"}}};
    const hive_key set{"ControlSet001", {}, {{"Services", {}, {{"BTHPORT", {}, {{"Parameters", {}, {devices}}}}}}}};
    const QByteArray hive = hive_bytes({"root", {}, {set, {"Select", {hive_number_value("Current", 1)}}}});
    const auto changed = [&hive](qsizetype at, const QByteArray &bytes) {
        return QByteArray(hive).replace(at, bytes.size(), bytes);
    };
    const qsizetype key = hive.indexOf(address) - 76; // where its name stands in a key
    const qsizetype devices_list = hive.indexOf("lf", hive.indexOf("001122334455"));
    const qsizetype name = hive.indexOf(QByteArray("vk\x04\0\x08\0\0\0", 8));
    return {{"a key beyond the end", changed(devices_list + 4, QByteArray("\0\xff\xff\x7f", 4)), 0},
            {"values beyond the end", changed(key + 40, QByteArray("\0\xff\xff\x7f", 4)), 2},
            {"a name that is no UTF-16",
             changed(key + 2, QByteArray(2, '\0')).replace(key + 76, 12, QByteArray("\0\xd8", 2).repeated(6)), 1},
            {"a value of a gigabyte", changed(name + 4, QByteArray("\0\0\0\x40", 4)), 2}};
}

/** List and names of each line. */
QByteArrayList devices_of(const host_program &host)
{
    QByteArrayList devices;
    for (const QByteArray &line : content_of(host.path(u"case/Source1/host_devices.jsonl"_s)).split('\n')) {
        const QJsonObject json = QJsonDocument::fromJson(line).object();
        if (!line.isEmpty())
            devices.append((json.value("list"_L1).toString() + u' '
                            + json.value("names"_L1).toArray().first().toString() + u' '
                            + json.value("locator"_L1).toObject().value("file"_L1).toString())
                               .toUtf8());
    }
    return devices;
}

} // namespace

class test_host_devices : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void lists_of_a_mac();
    void damaged_list();
    void registry_data();
    void registry();
    void salvaged_rows();
    void lines_without_rows();
};

void test_host_devices::lists_of_a_mac()
{
    const host_program host;
    host.write_sample();
    const QString mobile = u"Library/Bluetooth/Library/Preferences/com.apple.MobileBluetooth.devices.plist"_s;
    write_file(host.path(u"sample/macos/"_s + mobile),
               xml_list("<dict><key>00:11:22:33:44:55</key><dict><key>Name</key><string>Car</string></dict></dict>"));
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, QString());
    const QByteArrayList devices = devices_of(host);
    QVERIFY(devices.size() > 1);
    QCOMPARE(devices.last(), "mobile_devices Car " + mobile.toUtf8());
    QVERIFY(devices.first().startsWith("preferences "));
    const QString line = u"\nSource1  done  1,000 devices, 20 paired_devices, "_s + QString::number(devices.size())
                         + u" host devices\n"_s;
    QVERIFY2(result.output.contains(line), qPrintable(result.output));
    QCOMPARE(host.source_record().value("host_devices"_L1).toInteger(), devices.size());
    QCOMPARE(content_of(host.path(u"case/Source1/Evidence/"_s + mobile)),
             content_of(host.path(u"sample/macos/"_s + mobile)));
}

void test_host_devices::damaged_list()
{
    const host_program host;
    host.write_sample();
    const QString preferences = u"Library/Preferences/com.apple.Bluetooth.plist"_s;
    write_file(host.path(u"sample/macos/"_s + preferences), "bplist00 and no more");
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.contains(u"error: the devices of "_s + preferences
                                    + u": it is no property list with a dictionary at its top\n"_s),
             qPrintable(result.errors));
}

void test_host_devices::registry_data()
{
    QTest::addColumn<QByteArray>("hive");
    QTest::addColumn<int>("code");
    QTest::addColumn<qint64>("count");
    QTest::addColumn<QString>("message");

    const QString read = u"note: the plug-in extracts nothing from Windows sources: the devices of its registry are in "
                         "host_devices.jsonl\n"_s;
    const QString path = u"Windows/System32/config/SYSTEM"_s;
    QTest::newRow("clean") << hive_with_a_device(5, 5) << 0 << qint64(1) << read;
    QTest::newRow("dirty")
        << hive_with_a_device(5, 4) << 0 << qint64(1)
        << u"note: "_s + path
               + u": the hive is dirty, its two sequence numbers are 5 and 4: the newest changes may be in "
                 "its transaction logs, which are not applied (SYSTEM.LOG1)\n"_s;
    QTest::newRow("damaged") << hive_with_a_device(5, 5).first(4096) << 4 << qint64(0)
                             << u"error: the devices of "_s + path
                                    + u": it is damaged, and nothing of it can be read\n"_s;
    for (const hostile_hive &hive : hostile_hives())
        QTest::newRow(hive.name)
            << hive.bytes << 4 << hive.count
            << u"error: the devices of "_s + path
                   + u": it is damaged, and was read as far as it goes: 1 keys or values are left out\n"_s;
}

void test_host_devices::registry()
{
    QFETCH(QByteArray, hive);
    QFETCH(int, code);
    QFETCH(qint64, count);
    QFETCH(QString, message);
    if (!can_read_registry())
        QSKIP("built without hivex");
    const host_program host;
    host.write_sample();
    write_file(host.path(hive_path), hive);
    write_file(host.path(hive_path + u".LOG1"_s), "log");
    const host_result result = host.run(extract_windows);
    QCOMPARE(result.exit_code, code);
    QVERIFY2(result.errors.contains(message), qPrintable(result.errors));
    QCOMPARE(host.source_record().value("host_devices"_L1).toInteger(), count);
    QCOMPARE(devices_of(host).size(), count);
    QCOMPARE(content_of(host.path(u"case/Source1/Evidence/Windows/System32/config/SYSTEM"_s)), hive);
    const QJsonArray evidence = host.source_record().value("evidence"_L1).toArray();
    QCOMPARE(evidence.size(), 2);
    QCOMPARE(evidence.at(1).toObject().value("path"_L1).toString(), u"Windows/System32/config/SYSTEM.LOG1"_s);
    if (code == 0)
        QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(host.run(extract_windows + QStringList{u"--force"_s}).exit_code, code);
}

void test_host_devices::salvaged_rows()
{
    const host_program host;
    host.write_sample();
    const QString path = host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s);
    QByteArray database = content_of(path);
    database.replace(4096, 4096, QByteArray(4096, 'x')); // the root of the device table
    write_file(path, database);
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s});
    QCOMPARE(result.exit_code, 4);
    const qint64 salvaged = host.source_record().value("salvaged"_L1).toObject().value("devices"_L1).toInteger();
    QCOMPARE(salvaged, 1000);
    QCOMPARE(content_of(host.path(u"case/Source1/salvage.jsonl"_s)).count('\n'), salvaged);
    QVERIFY2(result.errors.contains(
                 u"warning: rows of the table devices on intact pages of its damaged database: 1000; "
                 "they are in salvage.jsonl and not in the result\n"_s),
             qPrintable(result.errors));
}

void test_host_devices::lines_without_rows()
{
    const host_program host;
    const QByteArray line = "2024-05-17 12:11:05.123456+0200 0x1 Default 0x0 159 0 x: active device: PI AA Nm 'b'\n";
    write_file(host.path(u"log.txt"_s), line + line + line + QByteArray(2, '\0'));
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"log.txt"_s, u"-o"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QVERIFY2(result.errors.contains(u"warning: 3 lines with \"active device:\" gave no row\n"_s),
             qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"warning: log.txt: it holds 2 zero bytes, which no text has, from offset "_s
                                    + QString::number(3 * line.size()) + u" on\n"_s),
             qPrintable(result.errors));
    QCOMPARE(host.source_record().value("unparsed_lines"_L1).toObject(),
             (QJsonObject{{u"devices"_s, 0}, {u"paired_devices"_s, 3}}));
    QCOMPARE(content_of(host.path(u"case/Source1/unparsed_lines.jsonl"_s)).count("\"host_date\":\"2024-05-17T12:11:05"),
             3);
}

BLUETOOTH_LOGS_TEST(test_host_devices, QCoreApplication)

#include "test_host_devices.moc"
