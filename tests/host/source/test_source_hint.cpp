// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/source_hint.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class test_source_hint : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void hint_data();
    void hint();
};

void test_source_hint::hint_data()
{
    QTest::addColumn<QString>("named"); // $ stands for a root that holds a database
    QTest::addColumn<QString>("hint");

    const QString root = u"the macOS source that it belongs to is -i $"_s;
    const QString other = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
    // clang-format off
    QTest::newRow("folder of the databases") << u"$/Library/Bluetooth"_s            << root;
    QTest::newRow("Library")                 << u"$/Library"_s                      << root;
    QTest::newRow("a database")              << u"$/Library/Bluetooth/"_s + other   << root;
    QTest::newRow("a file beside it")        << u"$/Library/Bluetooth/notes.txt"_s  << root;
    QTest::newRow("a volume with the data volume in it") << u"$/../../.."_s         << root;
    QTest::newRow("nothing to do with it")   << u"$/Users/anna/x/y"_s               << QString();
    QTest::newRow("a database elsewhere")    << u"/nowhere/"_s + other              << QString(u"a macOS source is the folder that holds this database as Library/Bluetooth/"_s + other);
    // clang-format on
}

void test_source_hint::hint()
{
    QFETCH(QString, named);
    QFETCH(QString, hint);
    const QTemporaryDir folder;
    const QString root = folder.path() + u"/System/Volumes/Data"_s;
    QVERIFY(QDir().mkpath(root + u"/Library/Bluetooth"_s));
    QFile database(root + u"/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s);
    QVERIFY(database.open(QIODevice::WriteOnly));
    QCOMPARE(source_hint(QDir::cleanPath(named.replace(u'$', root))), hint.replace(u'$', root));
}

BLUETOOTH_LOGS_TEST(test_source_hint, QCoreApplication)

#include "test_source_hint.moc"
