// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/registry_hive.h"
#include "tests/support/hive_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class test_registry_hive : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void data_data();
    void data();
    void keys_and_values();
    void damage_data();
    void damage();
};

void test_registry_hive::data_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QVariant>("value");

    const auto as_bytes = [](const QByteArray &bytes) { return QVariant(bytes); };
    const QByteArray two("a\0\0\0b\0c\0\0\0\0\0", 12);
    const QByteArray large(64 << 10, 'x');
    // clang-format off
    QTest::newRow("none")            << 0U  << QByteArray("ab")                     << as_bytes("ab");
    QTest::newRow("text")            << 1U  << QByteArray("a\0b\0\0\0", 6)         << QVariant(u"ab"_s);
    QTest::newRow("many zeros")      << 1U  << QByteArray("a\0\0\0\0\0", 6)        << QVariant(u"a"_s);
    QTest::newRow("zero within")     << 1U  << two                                  << QVariant(QString(u"a"_s + QChar(0) + u"bc"_s));
    QTest::newRow("no final zero")   << 1U  << QByteArray("a\0", 2)                 << QVariant(u"a"_s);
    QTest::newRow("zeros alone")     << 1U  << QByteArray("\0\0", 2)                << QVariant(QString());
    QTest::newRow("odd text")        << 1U  << QByteArray("a\0b", 3)                << as_bytes(QByteArray("a\0b", 3));
    QTest::newRow("half a letter")   << 1U  << QByteArray("\x3d\xd8", 2)            << as_bytes("\x3d\xd8");
    QTest::newRow("text to expand")  << 2U  << QByteArray("%\0\0\0", 4)             << QVariant(u"%"_s);
    QTest::newRow("bytes")           << 3U  << QByteArray("\1\2")                   << as_bytes("\1\2");
    QTest::newRow("number")          << 4U  << QByteArray("\1\2\3\xff")             << QVariant(qint64(0xff030201));
    QTest::newRow("short number")    << 4U  << QByteArray("\1\2\3")                 << as_bytes("\1\2\3");
    QTest::newRow("other order")     << 5U  << QByteArray("\xff\3\2\1")             << QVariant(qint64(0xff030201));
    QTest::newRow("long in it")      << 5U  << QByteArray("\1\2\3\4\5")             << as_bytes("\1\2\3\4\5");
    QTest::newRow("link")            << 6U  << QByteArray("a\0", 2)                 << as_bytes(QByteArray("a\0", 2));
    QTest::newRow("texts")           << 7U  << two                                  << QVariant(QStringList{u"a"_s, u"bc"_s});
    QTest::newRow("odd texts")       << 7U  << two.chopped(1)                       << as_bytes(two.chopped(1));
    QTest::newRow("long number")     << 11U << QByteArray("\1\0\0\0\0\0\0\x80", 8)  << QVariant(quint64(0x8000000000000001));
    QTest::newRow("short long one")  << 11U << QByteArray("\1\2\3\4")               << as_bytes("\1\2\3\4");
    QTest::newRow("type of no name") << 0xffff0011U << QByteArray("ab")             << as_bytes("ab");
    QTest::newRow("most bytes")      << 3U  << large                                << as_bytes(large);
    QTest::newRow("too many")        << 3U  << large + 'x'                          << QVariant(QVariantMap{{u"size"_s, qint64(65537)}});
    // clang-format on
}

void test_registry_hive::data()
{
    QFETCH(const quint32, type);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QVariant, value);
    registry_hive hive(hive_bytes({"root", {{"v", type, bytes}}}));
    QVERIFY(hive.is_open());
    const QList<registry_hive::value> values = hive.values_of(hive.root());
    QCOMPARE(values.size(), 1);
    const QVariant found = hive.data_of(values.first());
    QCOMPARE(found.typeName(), value.typeName());
    QCOMPARE(found, value);
    QCOMPARE(hive.unread_count(), value.typeId() == QMetaType::QVariantMap ? 1 : 0);
}

void test_registry_hive::keys_and_values()
{
    const hive_key deepest{"Deep", {}, {}, 12345};
    registry_hive hive(hive_bytes({"root", {{"one", 1, {}}, {"", 1, {}}}, {{"A", {}, {deepest}}, {"B"}}, 7}));
    QStringList names;
    for (const registry_hive::key &key : hive.keys_below(hive.root()))
        names.append(key.name);
    for (const registry_hive::value &value : hive.values_of(hive.root()))
        names.append(value.name);
    QCOMPARE(names, QStringList({u"A"_s, u"B"_s, u"one"_s, QString()}));
    QVERIFY(!hive.key_below(hive.root(), u"C"_s));
    QCOMPARE(hive.key_below(hive.root(), u"b"_s)->name, u"B"_s);
    QVERIFY(!hive.key_at(hive.root(), {u"B"_s, u"Deep"_s}));
    const auto deep = hive.key_at(hive.root(), {u"a"_s, u"DEEP"_s});
    QCOMPARE(deep->name, u"Deep"_s);
    QCOMPARE(hive.last_write(*deep), std::optional<quint64>(12345));
    QCOMPARE(hive.last_write(hive.root()), std::optional<quint64>(7));
    QVERIFY(hive.keys_below(*deep).isEmpty());
    QVERIFY(hive.values_of(*deep).isEmpty());
    QCOMPARE(hive.unread_count(), 0);
    QVERIFY(hive.keys_below({}).isEmpty()); // a key that is none
    QCOMPARE(hive.unread_count(), 1);
}

void test_registry_hive::damage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("is_open");

    // clang-format off
    QTest::newRow("whole")   << hive_bytes({"root"})  << true;
    QTest::newRow("nothing") << QByteArray()          << false;
    QTest::newRow("no hive") << QByteArray(8192, 'x') << false;
    // clang-format on
}

void test_registry_hive::damage()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, is_open);
    const registry_hive hive(bytes);
    QCOMPARE(hive.is_open(), is_open);
    QCOMPARE(hive.is_damaged(), !is_open); // the checks were left out in the second try
}

BLUETOOTH_LOGS_TEST(test_registry_hive, QCoreApplication)

#include "test_registry_hive.moc"
