// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/join/device_join.h"
#include "tests/host/report/joined_rows.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using appearances = QList<device_appearance>;

/** One of source @p source; what joins is found as for a row. */
device_appearance seen(int source, const char *name, const char *uuid, const char *address, const char *icloud = "")
{
    device_appearance one;
    one.source = source;
    one.table = u"devices"_s;
    one.name = name;
    one.uuid = uuid;
    one.address = address;
    one.icloud_identifier = icloud;
    add_keys(one);
    return one;
}

/** "a+b by public_address b4:…; c": the devices that several sources know first say what joined them. */
QString joined_text(const appearances &rows)
{
    QStringList texts;
    for (const joined_device &device : joined_rows(rows)) {
        QStringList names;
        for (const device_appearance &appearance : device.appearances)
            names.append(QString::fromUtf8(appearance.name));
        QString text = names.join(u'+');
        for (const join_key &key : device.keys)
            text += u" by "_s + join_key_name(key.what) + u' ' + QString::fromUtf8(key.value);
        texts.append(text);
    }
    return texts.join(u"; "_s);
}

/** In a list, where it has a name besides. */
device_appearance listed(int source, const char *name, const char *local_name, const char *uuid = "")
{
    device_appearance one = seen(source, name, uuid, "");
    one.local_name = local_name;
    return one;
}

constexpr const char *uuid = "01234567-89AB-CDEF-0123-456789ABCDEF";
constexpr const char *other_uuid = "01234567-89AB-CDEF-0123-456789ABCDE0";
constexpr const char *long_name = "a name of as many characters: 36 ...";
constexpr const char *other_long_name = "another one of as many characters ..";
constexpr const char *address = "Public B4:C2:6A:7F:D3:7A";

} // namespace

/** Which appearances are one device. */
class test_device_join : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void devices_data();
    void devices();
    void shared_ones_are_numbered();
    void shared_ones_are_known();
};

void test_device_join::devices_data()
{
    QTest::addColumn<appearances>("rows");
    QTest::addColumn<QString>("joined");

    // clang-format off
    QTest::newRow("nothing")               << appearances{} << u""_s;
    QTest::newRow("one row")               << appearances{seen(0, "a", "U-1", address)} << u"a"_s;
    QTest::newRow("address, other form")   << appearances{seen(0, "a", "U-1", address), seen(1, "b", "U-2", "b4-c2-6a-7f-d3-7a")}
                                           << u"a+b by public_address b4:c2:6a:7f:d3:7a"_s;
    QTest::newRow("address in one source") << appearances{seen(0, "a", "U-1", address), seen(0, "b", "U-2", address)} << u"a+b"_s;
    QTest::newRow("identifier, any case")  << appearances{seen(0, "a", "U-1", "", "abcd-12"), seen(1, "b", "U-2", "", "ABCD-12")}
                                           << u"a+b by icloud_identifier ABCD-12"_s;
    QTest::newRow("identifier of zeros")   << appearances{seen(0, "a", "U-1", "", "0000-00"), seen(1, "b", "U-2", "", "0000-00")} << u"a; b"_s;
    QTest::newRow("random address")        << appearances{seen(0, "a", "U-1", "Random C0:00:00:00:00:01"), seen(1, "b", "U-2", "Random C0:00:00:00:00:01")} << u"a; b"_s;
    QTest::newRow("address of zeros")      << appearances{seen(0, "a", "", "Public 00:00:00:00:00:00"), seen(1, "b", "", "Public 00:00:00:00:00:00")} << u"a; b"_s;
    QTest::newRow("no address")            << appearances{seen(0, "a", "", ""), seen(1, "b", "", "")} << u"a; b"_s;
    QTest::newRow("UUID in one source")    << appearances{seen(0, "a", "U-1", ""), seen(0, "b", "U-1", "")} << u"a+b"_s;
    QTest::newRow("UUID in two sources")   << appearances{seen(0, "a", "U-1", ""), seen(1, "b", "U-1", "")} << u"a; b"_s;
    QTest::newRow("long UUID in one source")  << appearances{seen(0, "a", uuid, ""), seen(0, "b", uuid, ""), seen(0, "c", other_uuid, "")} << u"a+b; c"_s;
    QTest::newRow("long UUID in two sources") << appearances{seen(0, "a", uuid, ""), seen(1, "b", uuid, ""), seen(1, "c", uuid, "")} << u"a; b+c"_s;
    QTest::newRow("long names")            << appearances{seen(0, "a", long_name, ""), seen(0, "b", long_name, ""), seen(0, "c", other_long_name, "")} << u"a+b; c"_s;
    QTest::newRow("local names")           << appearances{listed(0, "a", "x"), listed(0, "b", "x"), listed(0, "c", "y"), listed(1, "d", "x")} << u"a+b; c; d"_s;
    QTest::newRow("UUID before a local name") << appearances{listed(0, "a", "x", "U-1"), listed(0, "b", "x", "U-2"), listed(0, "c", "y", "U-1")} << u"a+c; b"_s;
    QTest::newRow("sources in turn")       << appearances{seen(0, "a", "U-1", ""), seen(1, "b", "U-1", ""), seen(1, "c", "U-2", ""), seen(2, "d", "U-2", "")} << u"a; b; c; d"_s;
    QTest::newRow("keys of one source alone") << appearances{seen(0, "a", "", address, "ic-1"), seen(0, "b", "", "", "ic-1"), seen(1, "c", "", address)}
                                           << u"a+b+c by public_address b4:c2:6a:7f:d3:7a"_s;
    QTest::newRow("keys are sorted")       << appearances{seen(0, "a", "", address, "ic-1"), seen(1, "b", "", "", "IC-1"), seen(2, "c", "", "b4c26a7fd37a"), seen(2, "d", "", "b4c26a7fd37b", "ic-1"), seen(0, "e", "", "b4c26a7fd37b")}
                                           << u"a+b+c+d+e by public_address b4:c2:6a:7f:d3:7a by public_address b4:c2:6a:7f:d3:7b by icloud_identifier IC-1"_s;
    QTest::newRow("chain")                 << appearances{seen(0, "a", "U-1", address), seen(1, "b", "U-2", address), seen(1, "c", "U-2", "", "ic-1"), seen(2, "d", "U-3", "", "IC-1")}
                                           << u"a+b+c+d by public_address b4:c2:6a:7f:d3:7a by icloud_identifier IC-1"_s;
    QTest::newRow("joined by a later row") << appearances{seen(0, "a", "U-1", address), seen(1, "b", "", "", "ic-1"), seen(2, "c", "", address, "ic-1")}
                                           << u"a+b+c by public_address b4:c2:6a:7f:d3:7a by icloud_identifier IC-1"_s;
    // clang-format on
}

void test_device_join::devices()
{
    QFETCH(appearances, rows);
    QFETCH(QString, joined);
    QCOMPARE(joined_text(rows), joined);
}

void test_device_join::shared_ones_are_numbered()
{
    QList<joined_device> devices(3);
    devices[0].sources = {1};
    devices[1].sources = {0, 1};
    devices[2].sources = {1, 2};
    number_shared(devices);
    QCOMPARE(devices.at(0).shared_number, 0);
    QCOMPARE(devices.at(1).shared_number, 1);
    QCOMPARE(devices.at(2).shared_number, 2);
}

void test_device_join::shared_ones_are_known()
{
    device_join join;
    const device_appearance one = seen(0, "a", "U-1", address);
    const device_appearance by_uuid = seen(0, "b", "U-1", "");
    const device_appearance another = seen(1, "c", "U-1", "", "ic-1");
    for (const device_appearance &row : {one, by_uuid, another})
        join.learn(row);
    QVERIFY(!join.is_any_shared());
    QVERIFY(!join.is_shared(one) && !join.is_shared(another));
    join.learn(seen(1, "d", "", address));
    QVERIFY(join.is_any_shared());
    QVERIFY(join.is_shared(one) && join.is_shared(by_uuid));
    QVERIFY(!join.is_shared(another));
    QVERIFY(!join.is_shared(seen(2, "e", "U-1", "")));
    join.learn(seen(2, "g", "U-3", address, "ic-2")); // a key that is new joins what is shared
    QVERIFY(join.is_shared(one) && join.is_shared(seen(2, "h", "", "", "ic-2")));
    join.learn(seen(2, "i", "", "b4c26a7fd37b", "ic-2")); // and what is shared a key that is new
    QVERIFY(join.is_shared(one) && join.is_shared(seen(2, "k", "", "b4c26a7fd37b")));
    QVERIFY(!join.is_shared(another));
    QVERIFY(join.is_in_several_sources(one.keys.first()));
    QVERIFY(!join.is_in_several_sources(another.keys.first()));
    QVERIFY(!join.is_in_several_sources({join_key::kind::icloud_identifier, "b4:c2:6a:7f:d3:7a"}));
    QCOMPARE(join.device_of(one), join.device_of(by_uuid));
    QVERIFY(join.device_of(one) != join.device_of(another));
    QVERIFY(join.device_of(seen(2, "e", "U-1", "")) != join.device_of(seen(3, "f", "U-1", "")));
    QCOMPARE(join.device_of(seen(2, "g", "", "")), QByteArray());
    QCOMPARE(join.group_of(seen(2, "g", "", "")), -1);
}

BLUETOOTH_LOGS_TEST(test_device_join, QCoreApplication)

#include "test_device_join.moc"
