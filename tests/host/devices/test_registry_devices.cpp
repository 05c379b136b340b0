// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/filetime.h"
#include "host/devices/registry_devices.h"
#include "tests/support/hive_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>
#include <QTest>

#include <ctime>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 may_2024 = 133604142651234567;  // 2024-05-17T10:11:05.1234567Z
constexpr quint64 june_2024 = 133626240000000000; // 2024-06-12T00:00:00Z
const QByteArray address = "b4c26a7fd37a";

hive_key control_set(const QByteArray &name, const QList<hive_key> &below_parameters)
{
    return {name, {}, {{"Services", {}, {{"BTHPORT", {}, {{"Parameters", {}, below_parameters}}}}}}};
}

hive_key devices(const QList<hive_key> &keys)
{
    return {"Devices", {}, keys};
}

hive_key keys(const QList<hive_value> &values, const QList<hive_key> &below = {})
{
    return {"Keys", {}, {{"001122334455", values, below}}};
}

hive_key select(quint32 current)
{
    return {"Select", {hive_number_value("Current", current), hive_number_value("Default", 7)}};
}

hive_key hive_with(const QList<hive_key> &below_parameters)
{
    return {"root", {}, {select(1), control_set("ControlSet001", below_parameters)}};
}

QJsonArray lines_of(const device_list &list)
{
    QJsonArray lines;
    for (const host_device &device : list.devices)
        lines.append(QJsonDocument::fromJson(host_device_line(device, {1, "registry"_L1, u"SYSTEM"_s})).object());
    return lines;
}

/** Members of each line, as compact JSON. */
QByteArray members_of(const device_list &list, const QStringList &names)
{
    QJsonArray lines;
    for (const auto line : lines_of(list)) {
        QJsonArray members;
        for (const QString &name : names)
            members.append(line.toObject().value(name));
        lines.append(members);
    }
    return QJsonDocument(lines).toJson(QJsonDocument::Compact);
}

} // namespace

class test_registry_devices : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void whole_line();
    void kinds_data();
    void kinds();
    void in_keys_alone();
    void values_of_a_device_data();
    void values_of_a_device();
    void names_data();
    void names();
    void times_data();
    void times();
    void control_sets();
    void secrets_stay();
    void dirty();
    void damaged_data();
    void damaged();
    void hostile_shapes_data();
    void hostile_shapes();
    void loop_below_a_device();
    void values_that_are_no_good();
    void filetimes_data();
    void filetimes();
    void speed();
};

void test_registry_devices::initTestCase()
{
    if (!can_read_registry())
        QSKIP("built without hivex");
}

void test_registry_devices::whole_line()
{
    const QList<hive_value> values{
        {"Name", hive_binary, QByteArray("Anna\xE2\x80\x99s car\0", 13)},
        hive_text_value("FriendlyName", u"Car"_s),
        hive_time_value("LastSeen", may_2024),
        {"LastConnected", hive_long_number, hive_time_value("", june_2024).data},
        hive_number_value("COD", 0x240420),
        hive_number_value("VID", 76),
        hive_number_value("VIDType", 1),
        hive_number_value("PID", 0xFFFFFFFF),
        hive_number_value("LMPVersion", 8),
    };
    const hive_key services{"CachedServices", {{"00010001", hive_binary, "\x35\x01"}}, {}, 0};
    const device_list list = read_registry_devices(hive_bytes(
        hive_with({devices({{address, values, {services}, june_2024}}), keys({{address, hive_binary, "secret"}})})));
    QCOMPARE(list.problems, QStringList());
    QCOMPARE(list.notes, QStringList());
    QCOMPARE(list.devices.size(), 1);
    const QByteArray expected =
        R"({"source":1,"list":"registry","address":"b4c26a7fd37a","address_normal":"b4:c2:6a:7f:d3:7a",)"
        "\"names\":[\"Anna\xE2\x80\x99s car\",\"Car\"],"
        R"("kind":"classic","is_paired":true,"class_of_device":{"major":"Audio/Video","minor":"Car audio",)"
        R"("service":["Rendering","Audio"],"value":2360352},"vendor":{"id":76,"source":"SIG"},"product":4294967295,)"
        R"("bluetooth_version":"4.2","times":[)"
        R"({"clock":"utc","meaning":"LastSeen of the registry","name":"LastSeen","raw":133604142651234567,)"
        R"("utc":"2024-05-17T10:11:05.1234567Z"},)"
        R"({"clock":"utc","meaning":"LastConnected of the registry","name":"LastConnected",)"
        R"("raw":133626240000000000,"utc":"2024-06-12T00:00:00Z"},)"
        R"({"clock":"utc","meaning":"last write of the device's key in the registry","name":"key",)"
        R"("raw":133626240000000000,"utc":"2024-06-12T00:00:00Z"}],)"
        R"("raw":{"COD":2360352,"CachedServices\\":{"00010001":{"base64":"NQE="}},"FriendlyName":"Car",)"
        R"("LMPVersion":8,"LastConnected":133626240000000000,"LastSeen":{"base64":"B1k/h0Ko2gE="},)"
        R"("Name":{"base64":"QW5uYeKAmXMgY2FyAA=="},"PID":4294967295,"VID":76,"VIDType":1},)"
        R"("locator":{"file":"Windows/System32/config/SYSTEM",)"
        R"("path":"ControlSet001\\Services\\BTHPORT\\Parameters\\Devices\\b4c26a7fd37a"},)"
        R"("is_current":true,"listed_in":["Keys\\001122334455"]})"
        "\n";
    const QByteArray line = host_device_line(list.devices.first(),
                                             {1, "registry"_L1, u"Windows/System32/config/SYSTEM"_s});
    QCOMPARE(line.split(','), expected.split(',')); // which names the place of a difference
}

void test_registry_devices::kinds_data()
{
    QTest::addColumn<QList<hive_key>>("below_parameters");
    QTest::addColumn<QByteArray>("lines"); // address, kind, is_paired, listed_in

    const hive_key device{address};
    const hive_key with_class{address, {hive_number_value("COD", 0)}};
    const hive_key with_le{address, {hive_number_value("LEAppearance", 0)}};
    const hive_value link_key{address, hive_binary, "x"};
    const hive_value root_key{"MasterIRK", hive_binary, "x"};
    const hive_key two_adapters{"Keys",
                                {},
                                {{"00aa", {link_key}, {device}}, {"00bb", {{"B4C26A7FD37A", hive_binary, "x"}}}}};
    const QByteArray both_named = R"(["Keys\\00aa","Keys\\00bb"])";
    const QByteArray keys_named = R"(["Keys\\001122334455"])";

    // clang-format off
    QTest::newRow("no Bluetooth")        << QList<hive_key>{} << QByteArray("[]");
    QTest::newRow("no devices")          << QList<hive_key>{devices({}), keys({})} << QByteArray("[]");
    QTest::newRow("no Keys")             << QList<hive_key>{devices({device})} << QByteArray(R"([["b4c26a7fd37a",null,null,[]]])");
    QTest::newRow("Keys do not name it") << QList<hive_key>{devices({device}), keys({root_key})} << QByteArray(R"([["b4c26a7fd37a",null,false,[]]])");
    QTest::newRow("class of device")     << QList<hive_key>{devices({with_class})} << QByteArray(R"([["b4c26a7fd37a","classic",null,[]]])");
    QTest::newRow("LE member")           << QList<hive_key>{devices({with_le})} << QByteArray(R"([["b4c26a7fd37a","le",null,[]]])");
    QTest::newRow("link key")            << QList<hive_key>{devices({device}), keys({link_key})} << QByteArray(R"([["b4c26a7fd37a","classic",true,)" + keys_named + "]]");
    QTest::newRow("LE keys")             << QList<hive_key>{devices({device}), keys({}, {device})} << QByteArray(R"([["b4c26a7fd37a","le",true,)" + keys_named + "]]");
    QTest::newRow("both")                << QList<hive_key>{devices({with_class}), keys({}, {device})} << QByteArray(R"([["b4c26a7fd37a","both",true,)" + keys_named + "]]");
    QTest::newRow("only in Keys")        << QList<hive_key>{keys({link_key})} << QByteArray(R"([["b4c26a7fd37a","classic",true,)" + keys_named + "]]");
    QTest::newRow("only in LE keys")     << QList<hive_key>{keys({}, {device})} << QByteArray(R"([["b4c26a7fd37a","le",true,)" + keys_named + "]]");
    QTest::newRow("two adapters")        << QList<hive_key>{devices({device}), two_adapters} << QByteArray(R"([["b4c26a7fd37a","both",true,)" + both_named + "]]");
    QTest::newRow("two adapters alone")  << QList<hive_key>{two_adapters} << QByteArray(R"([["b4c26a7fd37a","both",true,)" + both_named + "]]");
    QTest::newRow("neither kind")        << QList<hive_key>{devices({{address, {hive_number_value("L", 1), hive_number_value("Le", 1)}}})} << QByteArray(R"([["b4c26a7fd37a",null,null,[]]])");
    QTest::newRow("two devices")         << QList<hive_key>{devices({{"001122334455"}, device}), keys({{"aabbccddeeff", hive_binary, "x"}})} << QByteArray(R"([["001122334455",null,false,[]],["b4c26a7fd37a",null,false,[]],["aabbccddeeff","classic",true,)" + keys_named + "]]");
    QTest::newRow("other letter case")   << QList<hive_key>{devices({device}), keys({{"B4C26A7FD37A", hive_binary, "x"}})} << QByteArray(R"([["b4c26a7fd37a","classic",true,)" + keys_named + "]]");
    QTest::newRow("names of other forms")<< QList<hive_key>{devices({{"b4c26a7fd37"}, {"b4c26a7fd37ab"}, {"b4c26a7fd37g"}})} << QByteArray("[]");
    // clang-format on
}

void test_registry_devices::kinds()
{
    QFETCH(QList<hive_key>, below_parameters);
    QFETCH(QByteArray, lines);
    const device_list list = read_registry_devices(hive_bytes(hive_with(below_parameters)));
    QCOMPARE(members_of(list, {u"address"_s, u"kind"_s, u"is_paired"_s, u"listed_in"_s}), lines);
    QCOMPARE(list.problems, QStringList());
}

/** Where it stands, and when it was written there. */
void test_registry_devices::in_keys_alone()
{
    const device_list list = read_registry_devices(
        hive_bytes(hive_with({keys({{"00112233445a", hive_binary, "x"}}, {{address, {}, {}, june_2024}})})));
    const QByteArray place =
        R"({"file":"SYSTEM","path":"ControlSet001\\Services\\BTHPORT\\Parameters\\Keys\\001122334455\\)";
    QCOMPARE(
        members_of(list, {u"locator"_s, u"times"_s, u"is_current"_s, u"raw"_s}),
        "[[" + place + R"(00112233445a"},[],true,null],[)" + place
            + R"(b4c26a7fd37a"},[{"clock":"utc","meaning":"last write of the device's key below Keys in the registry",)"
              R"("name":"key","raw":133626240000000000,"utc":"2024-06-12T00:00:00Z"}],true,null]])");
}

void test_registry_devices::values_of_a_device_data()
{
    QTest::addColumn<QList<hive_value>>("values");
    QTest::addColumn<QList<hive_key>>("below");
    QTest::addColumn<QByteArray>("line"); // vendor, product, bluetooth_version, names, raw

    const auto levels = [](int count) {
        hive_key key{"k" + QByteArray::number(count)};
        while (--count > 0)
            key = {"k" + QByteArray::number(count), {}, {key}};
        return QList<hive_key>{key};
    };
    // clang-format off
    QTest::newRow("none")            << QList<hive_value>() << QList<hive_key>() << QByteArray(R"([null,null,null,[],{}])");
    QTest::newRow("vendor of USB")   << QList<hive_value>{hive_number_value("VID", 1133), hive_number_value("VIDType", 2)} << QList<hive_key>() << QByteArray(R"([{"id":1133,"source":"USB"},null,null,[],{"VID":1133,"VIDType":2}])");
    QTest::newRow("vendor alone")    << QList<hive_value>{hive_number_value("VID", 1)} << QList<hive_key>() << QByteArray(R"([{"id":1,"source":null},null,null,[],{"VID":1}])");
    QTest::newRow("product alone")   << QList<hive_value>{hive_number_value("PID", 0)} << QList<hive_key>() << QByteArray(R"([null,0,null,[],{"PID":0}])");
    QTest::newRow("version of old")  << QList<hive_value>{hive_number_value("LmpVersion", 6)} << QList<hive_key>() << QByteArray(R"([null,null,"4.0",[],{"LmpVersion":6}])");
    QTest::newRow("three names")     << QList<hive_value>{{"LEName", hive_binary, "c"}, hive_text_value("FriendlyName", u"a"_s), {"Name", hive_binary, "a"}} << QList<hive_key>() << QByteArray(R"([null,null,null,["a","c"],{"FriendlyName":"a","LEName":{"base64":"Yw=="},"Name":{"base64":"YQ=="}}])");
    QTest::newRow("one name twice")  << QList<hive_value>{hive_number_value("a", 1), hive_number_value("a", 2)} << QList<hive_key>() << QByteArray(R"_([null,null,null,[],{"a":1,"a (2)":2}])_");
    QTest::newRow("four levels")     << QList<hive_value>() << levels(4) << QByteArray(R"([null,null,null,[],{"k1\\":{"k2\\":{"k3\\":{"k4\\":{}}}}}])");
    QTest::newRow("five levels")     << QList<hive_value>() << levels(5) << QByteArray(R"([null,null,null,[],{"k1\\":{"k2\\":{"k3\\":{"k4\\":{}}}}}])");
    // clang-format on
}

void test_registry_devices::values_of_a_device()
{
    QFETCH(const QList<hive_value>, values);
    QFETCH(const QList<hive_key>, below);
    const device_list list = read_registry_devices(hive_bytes(hive_with({devices({{address, values, below}})})));
    QCOMPARE(list.problems, QStringList());
    QTEST(members_of(list, {u"vendor"_s, u"product"_s, u"bluetooth_version"_s, u"names"_s, u"raw"_s})
              .chopped(1)
              .sliced(1),
          "line");
}

void test_registry_devices::names_data()
{
    QTest::addColumn<hive_value>("value");
    QTest::addColumn<QString>("name");

    QTest::newRow("UTF-8") << hive_value{"Name", hive_binary, "\xF0\x9F\x8E\xA7"} << u"🎧"_s;
    QTest::newRow("zeros behind") << hive_value{"Name", hive_binary, QByteArray("Anna\0\0", 6)} << u"Anna"_s;
    QTest::newRow("no UTF-8") << hive_value{"Name", hive_binary, "\xFF"} << QString();
    QTest::newRow("empty") << hive_value{"Name", hive_binary, ""} << QString();
    QTest::newRow("text") << hive_text_value("Name", u"Ännä"_s) << u"Ännä"_s;
    QTest::newRow("text of half a unit") << hive_value{"Name", hive_text, "abc"} << u"abc"_s;
    QTest::newRow("half a pair of surrogates")
        << hive_value{"Name", hive_text, QByteArray("\x00\xD8\x00\x00", 4)} << QString();
    QTest::newRow("number") << hive_number_value("Name", 7) << QString();
    QTest::newRow("type that nobody knows") << hive_value{"Name", 3211275, "Car"} << u"Car"_s;
    QTest::newRow("friendly") << hive_text_value("FriendlyName", u"Car"_s) << u"Car"_s;
    QTest::newRow("LE") << hive_value{"LEName", hive_binary, "Tag"} << u"Tag"_s;
    QTest::newRow("long") << hive_value{"Name", hive_binary, QByteArray((64 << 10) + 1, 'x')} << QString();
}

void test_registry_devices::names()
{
    QFETCH(hive_value, value);
    QFETCH(QString, name);
    const device_list list = read_registry_devices(hive_bytes(hive_with({devices({{address, {value}}})})));
    QCOMPARE(list.devices.size(), 1);
    QCOMPARE(list.devices.first().names.join(u'|'), name);
}

void test_registry_devices::times_data()
{
    QTest::addColumn<hive_value>("value");
    QTest::addColumn<QByteArray>("time"); // raw and utc

    QTest::newRow("eight bytes") << hive_time_value("LastSeen", may_2024)
                                 << QByteArray(R"([133604142651234567,"2024-05-17T10:11:05.1234567Z"])");
    QTest::newRow("never") << hive_time_value("LastSeen", 0) << QByteArray("[0,null]");
    QTest::newRow("all ones") << hive_time_value("LastSeen", std::numeric_limits<quint64>::max())
                              << QByteArray("[18446744073709552000,null]");
    QTest::newRow("seven bytes") << hive_value{"LastSeen", hive_binary, "abcdefg"}
                                 << QByteArray(R"([{"base64":"YWJjZGVmZw=="},null])");
    QTest::newRow("a number of 32 bits") << hive_number_value("LastSeen", 7) << QByteArray("[7,null]");
}

void test_registry_devices::times()
{
    QFETCH(hive_value, value);
    QFETCH(QByteArray, time);
    const device_list list = read_registry_devices(hive_bytes(hive_with({devices({{address, {value}}})})));
    const QJsonObject found = lines_of(list).at(0).toObject().value("times"_L1).toArray().at(0).toObject();
    QCOMPARE(QJsonDocument(QJsonArray{found.value("raw"_L1), found.value("utc"_L1)}).toJson(QJsonDocument::Compact),
             time);
}

void test_registry_devices::control_sets()
{
    const hive_key one = control_set("ControlSet001", {devices({{address}})});
    const hive_key two = control_set("ControlSet002", {devices({{address}})});
    const QStringList members{u"locator"_s, u"is_current"_s};
    const auto path = [](char set) -> QByteArray {
        return QByteArray(R"({"file":"SYSTEM","path":"ControlSet00)") + set
               + R"(\\Services\\BTHPORT\\Parameters\\Devices\\b4c26a7fd37a"})";
    };
    QCOMPARE(members_of(read_registry_devices(hive_bytes({"root", {}, {one, two, select(2), {"Setup"}}})), members),
             "[[" + path('1') + ",false],[" + path('2') + ",true]]");

    const device_list unknown = read_registry_devices(hive_bytes({"root", {}, {one}}));
    QCOMPARE(members_of(unknown, members), "[[" + path('1') + ",null]]");
    QCOMPARE(unknown.problems, QStringList{u"it does not say which control set is the current one"_s});
}

void test_registry_devices::secrets_stay()
{
    const QByteArray secret = "0123456789ABCDEF";
    const hive_key le{address,
                      {{"LTK", hive_binary, secret}, {"ERand", hive_binary, secret}, {"EDIV", hive_text, secret}}};
    const device_list list = read_registry_devices(hive_bytes(
        hive_with({devices({{address}}), keys({{address, hive_binary, secret}, {"IRK", hive_binary, secret}}, {le})})));
    QCOMPARE(list.devices.size(), 1);
    const QByteArray line = host_device_line(list.devices.first(), {1, "registry"_L1, u"SYSTEM"_s});
    for (const QByteArray &trace : {secret, secret.toBase64(), secret.toHex(), QByteArray("LTK"), QByteArray("ERand")})
        QVERIFY2(!line.contains(trace), line.constData());
}

void test_registry_devices::dirty()
{
    const device_list list = read_registry_devices(hive_bytes(hive_with({devices({{address}})}), 5, 4));
    QCOMPARE(list.devices.size(), 1);
    QCOMPARE(list.problems, QStringList());
    QCOMPARE(list.notes,
             QStringList{u"the hive is dirty, its two sequence numbers are 5 and 4: the newest changes may be "
                         "in its transaction logs, which are not applied"_s});
}

void test_registry_devices::damaged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qsizetype>("devices");
    QTest::addColumn<QString>("problem");

    const QByteArray hive = hive_bytes(hive_with({devices({{address}, {"001122334455"}})}));
    const QString nothing = u"it is damaged, and nothing of it can be read"_s;
    const auto changed = [&hive](qsizetype at, const QByteArray &bytes) {
        QByteArray result = hive;
        result.replace(at, bytes.size(), bytes);
        return result;
    };
    QTest::newRow("empty") << QByteArray() << qsizetype(0) << u"it is no registry hive"_s;
    QTest::newRow("signature alone") << QByteArray("regf") << qsizetype(0) << u"it is no registry hive"_s;
    QTest::newRow("something else") << QByteArray(8192, 'x') << qsizetype(0) << u"it is no registry hive"_s;
    QTest::newRow("header alone") << hive.first(4096) << qsizetype(0) << nothing;
    QTest::newRow("checksum") << changed(508, "xxxx") << qsizetype(0) << nothing;
    QTest::newRow("no bin") << changed(4096, "xxxx") << qsizetype(0) << nothing;
}

void test_registry_devices::damaged()
{
    QFETCH(QByteArray, bytes);
    QFETCH(qsizetype, devices);
    QFETCH(QString, problem);
    const device_list list = read_registry_devices(bytes);
    QCOMPARE(list.devices.size(), devices);
    QCOMPARE(list.problems, QStringList{problem});
}

/** Each leads a reader that follows it astray; what is intact around it is read. */
void test_registry_devices::hostile_shapes_data()
{
    QTest::addColumn<QByteArray>("hive");
    QTest::addColumn<QByteArrayList>("addresses");
    QTest::addColumn<int>("problems");

    const QByteArray other = "001122334455";
    const QByteArray hive = hive_bytes(hive_with({devices({{address, {{"Name", hive_binary, "abcdefgh"}}}, {other}})}));
    const qsizetype key = hive.indexOf(address) - 76;
    const auto changed = [&hive](qsizetype at, const QByteArray &bytes) {
        QByteArray result = hive;
        result.replace(at, bytes.size(), bytes);
        return result;
    };
    const QByteArray root_cell = hive.sliced(36, 4);
    const QByteArray outside("\0\xff\xff\x7f", 4);
    const qsizetype devices_list = hive.indexOf("lf", hive.indexOf(other));
    QVERIFY(key > 0 && devices_list > 0);

    // clang-format off
    QTest::newRow("a key that is its own ancestor") << changed(devices_list + 4, root_cell)            << QByteArrayList{other} << 0;
    QTest::newRow("a key beyond the end")           << changed(devices_list + 4, outside)              << QByteArrayList{} << 1;
    QTest::newRow("a key inside another cell")      << changed(devices_list + 4, QByteArray("\x21\0\0\0", 4)) << QByteArrayList{} << 1;
    QTest::newRow("a list that says it has 65,535") << changed(devices_list + 2, "\xff\xff")           << QByteArrayList{} << 1;
    QTest::newRow("a list that is none")            << changed(devices_list, "xx")                     << QByteArrayList{} << 1;
    QTest::newRow("values beyond the end")          << changed(key + 40, outside)                      << QByteArrayList{address, other} << 1;
    QTest::newRow("a million values")               << changed(key + 36, QByteArray("\x40\x42\x0f\0", 4)) << QByteArrayList{address, other} << 1;
    QTest::newRow("a name longer than its cell")    << changed(key + 72, "\xff\x7f")                   << QByteArrayList{other} << 1;
    QTest::newRow("a name that is no UTF-16")       << changed(key + 2, QByteArray("\0\0", 2)) .replace(key + 76, 12, QByteArray("\0\xd8\0\xd8\0\xd8\0\xd8\0\xd8\0\xd8", 12)) << QByteArrayList{other} << 1;
    QTest::newRow("a cell without a size")          << changed(key - 4, QByteArray(4, '\0'))           << QByteArrayList{} << 1;
    // clang-format on
}

void test_registry_devices::hostile_shapes()
{
    QFETCH(QByteArray, hive);
    QFETCH(QByteArrayList, addresses);
    const device_list list = read_registry_devices(hive);
    QByteArrayList found;
    for (const host_device &device : list.devices)
        found.append(device.address.toLatin1());
    QCOMPARE(found, addresses);
    QTEST(int(list.problems.size()), "problems");
}

/** A key below a device that leads back to the device. */
void test_registry_devices::loop_below_a_device()
{
    QByteArray hive = hive_bytes(hive_with({devices({{address, {}, {{"below", {}, {{"deeper"}}}}}})}));
    const qsizetype device = hive.indexOf(address) - 76;
    const qsizetype below_list = hive.lastIndexOf("lf", hive.indexOf("below"));
    QVERIFY(device > 0 && below_list > 0);
    qToLittleEndian(quint32(device - 4 - 4096), hive.data() + below_list + 4);
    const device_list list = read_registry_devices(hive);
    QCOMPARE(list.devices.size(), 1);
    QVERIFY(host_device_line(list.devices.first(), {1, "registry"_L1, u"SYSTEM"_s}).size() < 4096);
}

void test_registry_devices::values_that_are_no_good()
{
    QByteArray hive = hive_bytes(
        hive_with({devices({{address, {{"Name", hive_binary, "abcdefgh"}}}, {"001122334455"}})}));
    const qsizetype value = hive.indexOf("vk", 4096 + 200) < 0 ? -1 : hive.lastIndexOf("vk");
    QVERIFY(value > 0);
    const qsizetype name = hive.indexOf(QByteArray("vk\x04\0\x08\0\0\0", 8));
    QVERIFY(name > 0);
    hive.replace(name + 4, 4, QByteArray("\x00\x00\x00\x40", 4)); // says that it has a gigabyte
    const device_list list = read_registry_devices(hive);
    QCOMPARE(members_of(list, {u"address"_s, u"raw"_s}),
             R"([["b4c26a7fd37a",{"Name":{"size":1073741824}}],["001122334455",{}]])");
    QCOMPARE(list.problems,
             QStringList{u"it is damaged, and was read as far as it goes: 1 keys or values are left out"_s});
}

void test_registry_devices::filetimes_data()
{
    QTest::addColumn<quint64>("filetime");
    QTest::addColumn<QString>("text");

    QTest::newRow("never") << quint64(0) << QString();
    QTest::newRow("all ones") << std::numeric_limits<quint64>::max() << QString();
    QTest::newRow("first step") << quint64(1) << u"1601-01-01T00:00:00.0000001Z"_s;
    QTest::newRow("1970") << quint64(116444736000000000) << u"1970-01-01T00:00:00Z"_s;
    QTest::newRow("with a fraction") << may_2024 << u"2024-05-17T10:11:05.1234567Z"_s;
    QTest::newRow("last second of 9999") << quint64(2650467743990000000) << u"9999-12-31T23:59:59Z"_s;
    QTest::newRow("year 10000") << quint64(2650467744000000000) << QString();
}

void test_registry_devices::filetimes()
{
    QFETCH(quint64, filetime);
    QFETCH(QString, text);
    QCOMPARE(filetime_text(filetime), text);
}

void test_registry_devices::speed()
{
    QList<hive_key> entries;
    for (int i = 0; i < 500; ++i)
        entries.append(
            {QByteArray::number(i, 16).rightJustified(12, '0'),
             {{"Name", hive_binary, "Device"}, hive_time_value("LastSeen", may_2024), hive_number_value("COD", 4)}});
    QList<hive_key> others; // services and their values, which the rest of a SYSTEM hive is made of
    for (int i = 0; i < 20'000; ++i)
        others.append({QByteArray::number(i), {{"ImagePath", hive_binary, QByteArray(800, 'x')}}});
    hive_key root = hive_with({devices(entries)});
    root.keys.append({"Other", {}, others});
    const QByteArray hive = hive_bytes(root);
    QVERIFY(hive.size() > 15 << 20);
    QElapsedTimer timer;
    timer.start();
    const std::clock_t start = std::clock();
    const device_list list = read_registry_devices(hive);
    qInfo("%lld MiB, %lld ms by the clock, %ld ms of the processor", qlonglong(hive.size() >> 20), timer.elapsed(),
          (std::clock() - start) * 1000 / CLOCKS_PER_SEC);
    QCOMPARE(list.devices.size(), 500);
}

BLUETOOTH_LOGS_TEST(test_registry_devices, QCoreApplication)

#include "test_registry_devices.moc"
