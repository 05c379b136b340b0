// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/mobile_devices.h"
#include "host/devices/preferences_devices.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArrayList lines_of(const device_list &list, QLatin1StringView name)
{
    QByteArrayList lines;
    for (const host_device &device : list.devices)
        lines.append(host_device_line(device, {3, name, u"a.plist"_s}));
    return lines;
}

QByteArray entry(const char *key, const QByteArray &value)
{
    return QByteArray("<key>") + key + "</key>" + value;
}

QByteArray dictionary(const QByteArray &entries)
{
    return "<dict>" + entries + "</dict>";
}

QByteArray text(const QByteArray &characters)
{
    return "<string>" + characters + "</string>";
}

QByteArray integer(qint64 number)
{
    return "<integer>" + QByteArray::number(number) + "</integer>";
}

QByteArray array(const QByteArray &entries)
{
    return "<array>" + entries + "</array>";
}

/** A line of a device of which nothing is known but what is given. */
QByteArray line(const QByteArray &list, const QByteArray &address, const QByteArray &normal, const QByteArray &names,
                const QByteArray &paired, const QByteArray &decoded, const QByteArray &times, const QByteArray &raw,
                const QByteArray &path, const QByteArray &listed)
{
    return "{\"source\":3,\"list\":\"" + list + "\",\"address\":\"" + address + "\",\"address_normal\":" + normal
           + ",\"names\":[" + names + "],\"kind\":\"classic\",\"is_paired\":" + paired + ',' + decoded + ",\"times\":["
           + times + "],\"raw\":" + raw + ",\"locator\":{\"file\":\"a.plist\",\"path\":\"" + path
           + "\"},\"is_current\":null,\"listed_in\":[" + listed + "]}\n";
}

const QByteArray nothing_decoded =
    "\"class_of_device\":null,\"vendor\":null,\"product\":null,\"bluetooth_version\":null";

} // namespace

class test_property_list_devices : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void preferences_data();
    void preferences();
    void mobile_data();
    void mobile();
    void refused_data();
    void refused();
};

void test_property_list_devices::preferences_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<QByteArrayList>("lines");

    const QByteArray cached = "B4-C2-6A-7F-D3-7A";
    const QByteArray normal = "\"b4:c2:6a:7f:d3:7a\"";
    const auto cache = [](const QByteArray &entries) -> QByteArray {
        return entry("DeviceCache", dictionary(entries));
    };
    const auto expected = [&](const QByteArray &paired, const QByteArray &listed) -> QByteArray {
        return line("preferences", cached, normal, "", paired, nothing_decoded, "", "{}", "DeviceCache/" + cached,
                    listed);
    };
    const QByteArray empty_device = cache(entry(cached.constData(), dictionary("")));

    QTest::newRow("empty list") << QByteArray() << QByteArrayList();
    QTest::newRow("a device of which nothing is known") << empty_device << QByteArrayList{expected("null", "")};
    QTest::newRow("all members")
        << cache(entry(cached.constData(),
                       dictionary(entry("Name", text("A &amp; B")) + entry("displayName", text("Anna"))
                                  + entry("ClassOfDevice", integer(0x240404)) + entry("VendorID", integer(76))
                                  + entry("VendorIDSource", integer(1)) + entry("ProductID", integer(8206))
                                  + entry("LMPVersion", integer(9)) + entry("LMPSubversion", "<real>8.5</real>")
                                  + entry("LastNameUpdate", "<date>2024-05-17T12:11:05Z</date>")
                                  + entry("Services", "<data>AP8=</data>"))))
        << QByteArrayList{line(
               "preferences", cached, normal, R"("A & B","Anna")", "null",
               R"("class_of_device":{"major":"Audio/Video","minor":"Wearable headset","service":["Rendering","Audio"],)"
               R"("value":2360324},"vendor":{"id":76,"source":"SIG"},"product":8206,"bluetooth_version":"5.0")",
               R"({"clock":"utc","meaning":"LastNameUpdate of the preferences list","name":"LastNameUpdate",)"
               R"("raw":"2024-05-17T12:11:05Z","utc":"2024-05-17T12:11:05Z"})",
               R"({"ClassOfDevice":2360324,"LMPSubversion":8.5,"LMPVersion":9,"LastNameUpdate":"2024-05-17T12:11:05Z",)"
               R"("Name":"A & B","ProductID":8206,"Services":{"base64":"AP8="},"VendorID":76,"VendorIDSource":1,)"
               R"("displayName":"Anna"})",
               "DeviceCache/" + cached, "")};
    QTest::newRow("the same name twice, values of other kinds")
        << cache(entry(cached.constData(),
                       dictionary(entry("Name", text("A")) + entry("displayName", text("A"))
                                  + entry("ClassOfDevice", text("x")) + entry("VendorID", "<true/>")
                                  + entry("LMPVersion", integer(99)) + entry("ProductID", "<real>1.5</real>"))))
        << QByteArrayList{line("preferences", cached, normal, R"("A")", "null", nothing_decoded, "",
                               R"({"ClassOfDevice":"x","LMPVersion":99,"Name":"A","ProductID":1.5,"VendorID":true,)"
                               R"("displayName":"A"})",
                               "DeviceCache/" + cached, "")};
    QTest::newRow("an entry that is no dictionary")
        << cache(entry(cached.constData(), text("x")))
        << QByteArrayList{line("preferences", cached, normal, "", "null", nothing_decoded, "", "\"x\"",
                               "DeviceCache/" + cached, "")};
    QTest::newRow("a key that is no address")
        << cache(entry("x", dictionary("")))
        << QByteArrayList{line("preferences", "x", "null", "", "null", nothing_decoded, "", "{}", "DeviceCache/x", "")};
    QTest::newRow("paired") << empty_device + entry("PairedDevices", array(text("b4-c2-6a-7f-d3-7a")))
                            << QByteArrayList{expected("true", "\"PairedDevices\"")};
    QTest::newRow("not paired") << empty_device + entry("PairedDevices", array(""))
                                << QByteArrayList{expected("false", "")};
    QTest::newRow("PairedDevices is no array") << empty_device + entry("PairedDevices", text("b4-c2-6a-7f-d3-7a"))
                                               << QByteArrayList{expected("null", "\"PairedDevices\"")};
    QTest::newRow("named by others")
        << empty_device + entry("HIDDevices", array(text("b4-c2-6a-7f-d3-7a") + text("b4-c2-6a-7f-d3-7a")))
               + entry("PersistentPorts",
                       dictionary(entry("x-1", dictionary(entry("BTAddress", "<data>tMJqf9N6</data>")))))
               + entry("ServicesFor", dictionary(entry("B4:C2:6A:7F:D3:7A", integer(1))))
        << QByteArrayList{expected("null", R"("HIDDevices","PersistentPorts","ServicesFor")")};
    QTest::newRow("only in PairedDevices")
        << entry("PairedDevices", array(text("x") + text("b4-c2-6a-7f-d3-7a")))
        << QByteArrayList{line("preferences", "b4-c2-6a-7f-d3-7a", normal, "", "true", nothing_decoded, "", "null",
                               "PairedDevices/1", "\"PairedDevices\"")};
    QTest::newRow("only in two arrays") << entry("PairedDevices", array(text("b4-c2-6a-7f-d3-7a")))
                                               + entry("HIDDevices", array(text("B4C26A7FD37A")))
                                        << QByteArrayList{line("preferences", "B4C26A7FD37A", normal, "", "true",
                                                               nothing_decoded, "", "null", "HIDDevices/0",
                                                               R"("HIDDevices","PairedDevices")")};
}

void test_property_list_devices::preferences()
{
    QFETCH(QByteArray, entries);
    QFETCH(QByteArrayList, lines);
    const device_list list = read_preferences_devices(xml_list(dictionary(entries)));
    QCOMPARE(lines_of(list, "preferences"_L1), lines);
    QCOMPARE(list.problems, QStringList());
}

void test_property_list_devices::mobile_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<QByteArrayList>("lines");

    const char *const address = "B4:C2:6A:7F:D3:7A";
    const QByteArray normal = "\"b4:c2:6a:7f:d3:7a\"";
    const auto seen = [&](const QByteArray &time) -> QByteArray {
        return entry(address, dictionary(entry("LastSeenTime", time)));
    };
    const auto expected = [&](const QByteArray &names, const QByteArray &decoded, const QByteArray &times,
                              const QByteArray &raw) {
        return QByteArrayList{line("mobile_devices", address, normal, names, "null", decoded, times, raw, address, "")};
    };
    const auto reading = [](const QByteArray &raw, const QByteArray &utc, const QByteArray &meaning) -> QByteArray {
        return R"({"clock":"unknown","meaning":"LastSeenTime of the mobile list)" + meaning
               + R"(","name":"LastSeenTime","raw":)" + raw + ",\"utc\":" + utc + '}';
    };
    const QByteArray since_1970 = ", if it is seconds since 1970";
    const QByteArray since_2001 = ", if it is seconds since 2001";

    QTest::newRow("empty list") << QByteArray() << QByteArrayList();
    QTest::newRow("no devices") << entry("x", integer(1)) + entry("y", text("z")) << QByteArrayList();
    QTest::newRow("all members")
        << entry(address, dictionary(entry("Name", text("A")) + entry("UserNameKey", text("B"))
                                     + entry("DefaultName", text("C")) + entry("DeviceIdVendor", integer(76))
                                     + entry("DeviceIdProduct", integer(8206)) + entry("more", array(integer(-1)))))
        << expected(
               R"("A","B","C")",
               R"("class_of_device":null,"vendor":{"id":76,"source":null},"product":8206,"bluetooth_version":null)", "",
               R"({"DefaultName":"C","DeviceIdProduct":8206,"DeviceIdVendor":76,"Name":"A","UserNameKey":"B",)"
               R"("more":[-1]})");
    QTest::newRow("seconds of either epoch")
        << seen(integer(1000000000))
        << expected("", nothing_decoded,
                    reading("1000000000", "\"2001-09-09T01:46:40Z\"", since_1970) + ','
                        + reading("1000000000", "\"2032-09-09T01:46:40Z\"", since_2001),
                    R"({"LastSeenTime":1000000000})");
    QTest::newRow("only since 1970") << seen(integer(1715940665))
                                     << expected("", nothing_decoded,
                                                 reading("1715940665", "\"2024-05-17T10:11:05Z\"", since_1970),
                                                 R"({"LastSeenTime":1715940665})");
    QTest::newRow("only since 2001") << seen(integer(737633465))
                                     << expected("", nothing_decoded,
                                                 reading("737633465", "\"2024-05-17T10:11:05Z\"", since_2001),
                                                 R"({"LastSeenTime":737633465})");
    QTest::newRow("the first second of 2035")
        << seen(integer(2051222400))
        << expected("", nothing_decoded, reading("2051222400", "null", ""), R"({"LastSeenTime":2051222400})");
    QTest::newRow("zero") << seen(integer(0))
                          << expected("", nothing_decoded, reading("0", "\"2001-01-01T00:00:00Z\"", since_2001),
                                      R"({"LastSeenTime":0})");
    QTest::newRow("negative") << seen(integer(-5))
                              << expected("", nothing_decoded, reading("-5", "null", ""), R"({"LastSeenTime":-5})");
    QTest::newRow("a text") << seen(text("x"))
                            << expected("", nothing_decoded, reading("\"x\"", "null", ""), R"({"LastSeenTime":"x"})");
    QTest::newRow("a date") << seen("<date>2024-05-17T10:11:05Z</date>")
                            << expected("", nothing_decoded,
                                        R"({"clock":"utc","meaning":"LastSeenTime of the mobile list",)"
                                        R"("name":"LastSeenTime","raw":"2024-05-17T10:11:05Z",)"
                                        R"("utc":"2024-05-17T10:11:05Z"})",
                                        R"({"LastSeenTime":"2024-05-17T10:11:05Z"})");
    QTest::newRow("a date before it, and no reading")
        << entry(address,
                 dictionary(entry("Added", "<date>2024-05-17T10:11:05Z</date>") + entry("LastSeenTime", integer(-5))))
        << expected("", nothing_decoded,
                    R"({"clock":"utc","meaning":"Added of the mobile list","name":"Added",)"
                    R"("raw":"2024-05-17T10:11:05Z","utc":"2024-05-17T10:11:05Z"},)"
                        + reading("-5", "null", ""),
                    R"({"Added":"2024-05-17T10:11:05Z","LastSeenTime":-5})");
    QTest::newRow("no dictionary") << entry(address, integer(7)) << expected("", nothing_decoded, "", "7");
}

void test_property_list_devices::mobile()
{
    QFETCH(QByteArray, entries);
    QFETCH(QByteArrayList, lines);
    const device_list list = read_mobile_devices(xml_list(dictionary(entries)));
    QCOMPARE(lines_of(list, "mobile_devices"_L1), lines);
    QCOMPARE(list.problems, QStringList());
}

void test_property_list_devices::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("problem");

    const QString no_list = u"it is no property list with a dictionary at its top"_s;
    QTest::newRow("empty") << QByteArray() << no_list;
    QTest::newRow("text") << QByteArray("x") << no_list;
    QTest::newRow("array") << xml_list(array("")) << no_list;
    QTest::newRow("cut off") << xml_list(dictionary("")).chopped(20) << no_list;
    QTest::newRow("contains itself") << binary_list({binary_array({0})}) << no_list;
    QTest::newRow("too large") << QByteArray((16 << 20) + 1, 'x')
                               << u"it has more than 16 MiB, too much for such a list"_s;
}

void test_property_list_devices::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, problem);
    for (const auto read : {read_preferences_devices, read_mobile_devices}) {
        const device_list list = read(bytes);
        QCOMPARE(list.devices.size(), 0);
        QCOMPARE(list.problems, QStringList{problem});
    }
}

BLUETOOTH_LOGS_TEST(test_property_list_devices, QCoreApplication)

#include "test_property_list_devices.moc"
