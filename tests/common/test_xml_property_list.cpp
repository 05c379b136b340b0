// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/xml_property_list.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

/** What stands in malformed lists, where Foundation's parsers answer each in its own way. */
class test_xml_property_list : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void malformed_values_data();
    void malformed_values();
};

void test_xml_property_list::malformed_values_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QVariant>("value");

    // clang-format off
    QTest::newRow("hexadecimal")       << xml_list("<integer>0x1F</integer>")                  << QVariant(31LL);
    QTest::newRow("integers beyond 64 bits") << xml_list("<array><integer>-9223372036854775809</integer><integer>-99999999999999999999</integer><integer>18446744073709551616</integer></array>")
                                       << QVariant(QVariantList{std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min(), std::numeric_limits<quint64>::max()});
    QTest::newRow("unreadable numbers") << xml_list("<array><integer>7a</integer><integer/><integer>-</integer><real>a</real><real/></array>") << QVariant(QVariantList{QVariant(), QVariant(), QVariant(), QVariant(), QVariant()});
    QTest::newRow("unreadable dates")  << xml_list("<array><date>soon</date><date>2020-02-30T10:00:00Z</date><date>2020-05-03</date><date/></array>") << QVariant(QVariantList{QVariant(), QVariant(), QVariant(), QVariant()});
    QTest::newRow("reference of an archive") << xml_list("<array><dict><key>CF$UID</key><integer>1</integer></dict></array>") << QVariant(QVariantList{QVariant()});
    QTest::newRow("two values")                  << xml_list("<true/><true/>") << QVariant();
    QTest::newRow("key without a value")         << xml_list("<dict><key>a</key></dict>") << QVariant();
    QTest::newRow("namespace that nobody declared") << xml_list("<true x:a='b'/>") << QVariant(true);
    QTest::newRow("element in a text")           << xml_list("<string>a<true/></string>") << QVariant();
    // clang-format on
}

void test_xml_property_list::malformed_values()
{
    QFETCH(QByteArray, list);
    QFETCH(QVariant, value);

    const QVariant parsed = parse_xml_property_list(list);
    QCOMPARE(parsed.metaType(), value.metaType());
    QCOMPARE(parsed, value);
}

BLUETOOTH_LOGS_TEST(test_xml_property_list, QCoreApplication)

#include "test_xml_property_list.moc"
